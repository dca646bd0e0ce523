# Completion of tesselctl for bash; made by 'tesselctl reference bash'.

_tesselctl()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local path='' words='' word i
    local takes_value=' --app-type --array --ca-file --chap --chap-name --chap-secret-file --columns --connect-timeout --controller --cookie-file --count --description --device-id --discovery-chap --find-seconds --flush-seconds --format --group --health-status --host --host-ip --hostgroup --id --in-group --in-view --initial-size --initiator --initiator-file --ip --location --lock-seconds --log --logic-type --lun --lungroup --map-seconds --most --mutual-chap-name --mutual-chap-secret-file --name --old-chap-secret-file --old-mutual-chap-secret-file --os --output --password-file --pin --pool --running-status --scope --size --snapshot --start --step-seconds --textfile --timeout --token-file --type --usage-threshold --user --view '
    for ((i = 1; i < COMP_CWORD; i++)); do
        word=${COMP_WORDS[i]}
        if [[ $takes_value == *" $word "* ]]; then
            ((i++))
            continue
        fi
        case "$path${path:+ }$word" in
            'attach' | 'attach lun' | 'attach snapshot' | 'detach' | 'detach lun' | 'detach snapshot' | 'disk' | 'disk attach' | 'disk attach lun' | 'disk attach snapshot' | 'disk list' | 'disk release' | 'disk release lun' | 'disk release snapshot' | 'disk verify' | 'disk verify lun' | 'disk verify snapshot' | 'doctor' | 'explain' | 'explain lun' | 'explain snapshot' | 'fingerprint' | 'host' | 'host create' | 'host show' | 'hostgroup' | 'hostgroup add' | 'hostgroup create' | 'hostgroup delete' | 'hostgroup list' | 'hostgroup remove' | 'hostgroup show' | 'initiator' | 'initiator fc' | 'initiator fc add' | 'initiator fc create' | 'initiator fc delete' | 'initiator fc remove' | 'initiator fc show' | 'initiator iscsi' | 'initiator iscsi add' | 'initiator iscsi create' | 'initiator iscsi delete' | 'initiator iscsi modify' | 'initiator iscsi remove' | 'initiator iscsi show' | 'logs' | 'lun' | 'lun create' | 'lun list' | 'lun show' | 'lungroup' | 'lungroup add' | 'lungroup count' | 'lungroup create' | 'lungroup delete' | 'lungroup list' | 'lungroup remove' | 'lungroup show' | 'metrics' | 'ping' | 'port' | 'port eth' | 'port eth list' | 'port eth show' | 'port fc' | 'port fc list' | 'port fc show' | 'port fcoe' | 'port fcoe list' | 'port fcoe show' | 'reference' | 'remove' | 'remove lun' | 'remove snapshot' | 'scan' | 'scan lun' | 'scan snapshot' | 'snapshot' | 'snapshot list' | 'snapshot show' | 'tidy' | 'topology' | 'view' | 'view add' | 'view create' | 'view delete' | 'view list' | 'view remove' | 'view show')
                path+="${path:+ }$word" ;;
        esac
    done
    case $previous in
        --app-type | --array | --chap-name | --columns | --connect-timeout | --controller | --count | --description | --device-id | --find-seconds | --flush-seconds | --group | --health-status | --host | --host-ip | --hostgroup | --id | --initial-size | --initiator | --ip | --location | --lock-seconds | --logic-type | --lun | --lungroup | --map-seconds | --most | --mutual-chap-name | --name | --os | --pin | --pool | --running-status | --size | --snapshot | --start | --step-seconds | --timeout | --usage-threshold | --user | --view) return ;;
        --scope) COMPREPLY=($(compgen -W "local domain" -- "$current")); return ;;
        --chap | --discovery-chap) COMPREPLY=($(compgen -W "none oneway mutual" -- "$current")); return ;;
        --log) COMPREPLY=($(compgen -W "run interface audit" -- "$current")); return ;;
        --output) COMPREPLY=($(compgen -W "text json" -- "$current")); return ;;
        --type) COMPREPLY=($(compgen -W "thick thin" -- "$current")); return ;;
        --format) COMPREPLY=($(compgen -W "tree dot svg" -- "$current")); return ;;
        --in-group | --in-view) COMPREPLY=($(compgen -W "yes no" -- "$current")); return ;;
        --ca-file | --chap-secret-file | --cookie-file | --initiator-file | --mutual-chap-secret-file | --old-chap-secret-file | --old-mutual-chap-secret-file | --password-file | --textfile | --token-file) compopt -o filenames; COMPREPLY=($(compgen -f -- "$current")); return ;;
    esac
    case $path in
        '') words='disk lun snapshot lungroup host hostgroup initiator view port attach detach scan remove explain tidy topology logs metrics doctor ping fingerprint reference' ;;
        'attach') words='lun snapshot' ;;
        'attach lun') words='--initiator --initiator-file --host-ip --scan' ;;
        'attach snapshot') words='--initiator --initiator-file --host-ip --scan' ;;
        'detach') words='lun snapshot' ;;
        'detach lun') words='--initiator --initiator-file --all-hosts --remove-devices --force' ;;
        'detach snapshot') words='--initiator --initiator-file --all-hosts --remove-devices --force' ;;
        'disk') words='attach release verify list' ;;
        'disk attach') words='lun snapshot' ;;
        'disk attach lun') words='--initiator --initiator-file --host-ip --lock-seconds --find-seconds --map-seconds --step-seconds' ;;
        'disk attach snapshot') words='--initiator --initiator-file --host-ip --lock-seconds --find-seconds --map-seconds --step-seconds' ;;
        'disk list') words='' ;;
        'disk release') words='lun snapshot' ;;
        'disk release lun') words='--initiator --initiator-file --force --lock-seconds --flush-seconds --step-seconds' ;;
        'disk release snapshot') words='--initiator --initiator-file --force --lock-seconds --flush-seconds --step-seconds' ;;
        'disk verify') words='lun snapshot' ;;
        'disk verify lun') words='--initiator --initiator-file --map-seconds --step-seconds' ;;
        'disk verify snapshot') words='--initiator --initiator-file --map-seconds --step-seconds' ;;
        'doctor') words='' ;;
        'explain') words='lun snapshot' ;;
        'explain lun') words='--initiator --initiator-file --host' ;;
        'explain snapshot') words='--initiator --initiator-file --host' ;;
        'fingerprint') words='' ;;
        'host') words='create show' ;;
        'host create') words='--name --os --id --ip --location --description --hostgroup' ;;
        'host show') words='' ;;
        'hostgroup') words='create show list delete add remove' ;;
        'hostgroup add') words='--host' ;;
        'hostgroup create') words='--name --id --description' ;;
        'hostgroup delete') words='' ;;
        'hostgroup list') words='--host --view --id --name --start --count --columns' ;;
        'hostgroup remove') words='--host' ;;
        'hostgroup show') words='' ;;
        'initiator') words='iscsi fc' ;;
        'initiator fc') words='create show delete add remove' ;;
        'initiator fc add') words='--host' ;;
        'initiator fc create') words='--name --host' ;;
        'initiator fc delete') words='' ;;
        'initiator fc remove') words='' ;;
        'initiator fc show') words='' ;;
        'initiator iscsi') words='create show modify delete add remove' ;;
        'initiator iscsi add') words='--host' ;;
        'initiator iscsi create') words='--name --host --chap --discovery-chap --chap-name --chap-secret-file --mutual-chap-name --mutual-chap-secret-file' ;;
        'initiator iscsi delete') words='' ;;
        'initiator iscsi modify') words='--name --host --chap --discovery-chap --chap-name --chap-secret-file --mutual-chap-name --mutual-chap-secret-file --old-chap-secret-file --old-mutual-chap-secret-file' ;;
        'initiator iscsi remove') words='' ;;
        'initiator iscsi show') words='' ;;
        'logs') words='--follow --log' ;;
        'lun') words='create show list' ;;
        'lun create') words='--name --pool --size --id --description --type --initial-size --usage-threshold --controller' ;;
        'lun list') words='--group --host --id --name --pool --type --running-status --health-status --in-group --start --count --columns' ;;
        'lun show') words='' ;;
        'lungroup') words='create show list count delete add remove' ;;
        'lungroup add') words='--lun --snapshot' ;;
        'lungroup count') words='' ;;
        'lungroup create') words='--name --id --description --app-type' ;;
        'lungroup delete') words='' ;;
        'lungroup list') words='--lun --snapshot --view --id --name --in-view --app-type --start --count --columns' ;;
        'lungroup remove') words='--lun --snapshot' ;;
        'lungroup show') words='' ;;
        'metrics') words='--textfile --initiator --initiator-file' ;;
        'ping') words='' ;;
        'port') words='fc fcoe eth' ;;
        'port eth') words='show list' ;;
        'port eth list') words='--id --name --logic-type --start --count --columns' ;;
        'port eth show') words='' ;;
        'port fc') words='show list' ;;
        'port fc list') words='--id --name --logic-type --start --count --columns' ;;
        'port fc show') words='' ;;
        'port fcoe') words='show list' ;;
        'port fcoe list') words='--id --name --logic-type --start --count --columns' ;;
        'port fcoe show') words='' ;;
        'reference') words='bash mdoc' ;;
        'remove') words='lun snapshot' ;;
        'remove lun') words='--force' ;;
        'remove snapshot') words='--force' ;;
        'scan') words='lun snapshot' ;;
        'scan lun') words='' ;;
        'scan snapshot') words='' ;;
        'snapshot') words='show list' ;;
        'snapshot list') words='--group --host --id --name --lun --running-status --health-status --start --count --columns' ;;
        'snapshot show') words='' ;;
        'tidy') words='--initiator --initiator-file --host --remove --most' ;;
        'topology') words='--initiator --host --lun --snapshot --format --ascii' ;;
        'view') words='create show list delete add remove' ;;
        'view add') words='--lungroup --hostgroup' ;;
        'view create') words='--name --id --description --in-band-commands' ;;
        'view delete') words='' ;;
        'view list') words='--lungroup --hostgroup --id --name --start --count --columns' ;;
        'view remove') words='--lungroup --hostgroup' ;;
        'view show') words='' ;;
    esac
    COMPREPLY=($(compgen -W "$words --output --array --user --password-file --scope --device-id --token-file --cookie-file --ca-file --pin --insecure --connect-timeout --timeout --help" -- "$current"))
}

complete -F _tesselctl tesselctl
