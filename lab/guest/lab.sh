# The lab's functions, for shell tests: `. "$LAB_HOME/guest/lab.sh"`, or one at a time, also from
# other programs, as `lab FUNCTION ARGUMENT...`. All state is in the kernel or below /run/lab, so that
# each call may be a process of its own. Every function returns 0 or says on stderr what failed.

lab_home=$(dirname "${BASH_SOURCE[0]}")
for lab_piece in udev canary rescan target acl session multipath standins arraysim each; do
    . "$lab_home/$lab_piece.sh"
done
