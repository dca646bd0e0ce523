#ifndef TESSEL_ISCSIINITIATOR_H
#define TESSEL_ISCSIINITIATOR_H

#include <tessel/Handler.h>

#include <cstdint>
#include <string>

/**
 * The array's record of one iSCSI initiator name and its CHAP settings.
 *
 * The CHAP modes are texts: "0" no CHAP, any other value CHAP, "2" mutual CHAP (the initiator checks the
 * target too). The secrets are never read from the array. "INITATOR" is the array's own spelling.
 */
class TESSEL_API IscsiInitiatorMO
{
public:
    std::string ID;                            ///< the initiator name (iqn...); required by every operation
    std::string NAME;                          ///< display name
    std::string PARENTID;                      ///< ID of the host that it is bound to
    std::string PARENTNAME;                    ///< name of that host; read only
    uint32_t PARENTTYPE = 0;                   ///< object type of the parent; never read
    uint32_t HEALTHSTATUS = 0;                 ///< the array's code; read only
    uint32_t RUNNINGSTATUS = 0;                ///< the array's code; read only
    bool ISFREE = false;                       ///< bound to no host; read only
    bool USECHAP = false;                      ///< CHAP is used
    std::string NORMALVERMODE = "0";           ///< CHAP mode of normal sessions
    std::string DISCOVERYVERMODE = "0";        ///< CHAP mode of discovery sessions
    std::string CHAPNAME;                      ///< user name by which the initiator is authenticated
    std::string CHAPPASSWORD;                  ///< its secret
    std::string CHAPOLDPASSWORD;               ///< the secret in force, to change it; modify only
    std::string CHAPNAMEINITATORVERTARGET;     ///< name for the check of the target
    std::string CHAPPASSWORDINITATORVERTARGET; ///< its secret
    std::string CHAPOLDPASSWORDINITATORVERTARGET; ///< the secret in force of that check; modify only
};

/** Manages iSCSI initiators; CDeviceManager::getHandler(ISCSIINITIATOR_HANDLER). */
class TESSEL_API CIscsiInitiatorHandler : public CHandler
{
public:
    /**
     * Registers an initiator and reads it back once.
     * @param initiator ID is required. With USECHAP and a mode other than "0" the CHAP names and secrets are
     *        sent; one that is empty is logged as an error and sent all the same: the array decides. NAME,
     *        PARENTID and PARENTTYPE (21, host) are sent when set.
     * @return the initiator as the array holds it, without secrets.
     */
    virtual IscsiInitiatorMO createIscsiInitiator(IscsiInitiatorMO& initiator) = 0;

    /**
     * Deletes an initiator.
     * @param iscsiInitiatorID the initiator name; not empty.
     */
    virtual void deleteIscsiInitiator(const std::string& iscsiInitiatorID) = 0;

    /**
     * Changes name, host or CHAP settings. CHAPPASSWORD left empty sends no CHAP name or secret; the old
     * secrets are sent only when the array reports CHAP as in force.
     * @param initiator ID is required. USECHAP false, or both modes "0", turns CHAP off: read the initiator
     *        first and change that record. NAME and PARENTID are sent when set.
     */
    virtual void modifyIscsiInitiator(IscsiInitiatorMO& initiator) = 0;

    /**
     * Reads one initiator.
     * @param iscsiInitiatorID the initiator name; not empty.
     * @return the initiator, without secrets; with an empty ID when the array answers without one.
     */
    virtual IscsiInitiatorMO getIscsiInitiator(const std::string& iscsiInitiatorID) = 0;

    /**
     * Binds an initiator to a host.
     * @param iscsiInitiatorID the initiator name; not empty.
     * @param hostID ID of the host; not empty.
     */
    virtual void addIscsiInitiatorToHost(const std::string& iscsiInitiatorID, const std::string& hostID) = 0;

    /**
     * Unbinds an initiator from its host.
     * @param iscsiInitiatorID the initiator name; not empty.
     */
    virtual void removeIscsiInitiatorFromHost(const std::string& iscsiInitiatorID) = 0;
};

#endif
