#ifndef TESSEL_FCINITIATOR_H
#define TESSEL_FCINITIATOR_H

#include <tessel/Handler.h>

#include <cstdint>
#include <string>

/** The array's record of one Fibre Channel port of a host, named by its WWPN. */
class TESSEL_API FCInitiatorMO
{
public:
    std::string ID;             ///< the port WWN; required by every operation
    std::string NAME;           ///< display name
    std::string PARENTID;       ///< ID of the host that it is bound to
    std::string PARENTNAME;     ///< name of that host; read only
    uint32_t HEALTHSTATUS = 0;  ///< the array's code; read only
    uint32_t RUNNINGSTATUS = 0; ///< the array's code; read only
    bool ISFREE = false;        ///< bound to no host; read only
};

/** Manages FC initiators; CDeviceManager::getHandler(FCINITIATOR_HANDLER). */
class TESSEL_API CFCInitiatorHandler : public CHandler
{
public:
    /**
     * Registers an initiator and reads it back once.
     * @param initiator ID is required; PARENTID, when set, binds it to that host at once; NAME is sent when
     * set.
     * @return the initiator as the array holds it.
     */
    virtual FCInitiatorMO createFCInitiator(FCInitiatorMO& initiator) = 0;

    /**
     * Deletes an initiator.
     * @param fcInitiatorID the port WWN; not empty.
     */
    virtual void deleteFCInitiator(const std::string& fcInitiatorID) = 0;

    /**
     * Reads one initiator.
     * @param fcInitiatorID the port WWN; not empty.
     * @return the initiator; with an empty ID when the array answers without one.
     */
    virtual FCInitiatorMO getFCInitiator(const std::string& fcInitiatorID) = 0;

    /**
     * Binds an initiator to a host.
     * @param fcInitiatorID the port WWN; not empty.
     * @param hostID ID of the host; not empty.
     */
    virtual void addFCInitiatorToHost(const std::string& fcInitiatorID, const std::string& hostID) = 0;

    /**
     * Unbinds an initiator from its host.
     * @param fcInitiatorID the port WWN; not empty.
     */
    virtual void removeFCInitiatorFromHost(const std::string& fcInitiatorID) = 0;
};

#endif
