#ifndef TESSEL_ACCESSFACES_H
#define TESSEL_ACCESSFACES_H

/** @file
 * The handlers of hosts, host groups, initiators and mapping views, for const arguments, temporaries and
 * pages. Header only. */

#include <tessel/Handlers.h>

#include <string>

namespace ovra {
namespace tessel {

/** Hosts. */
class Hosts : public Face<CHostHandler>
{
public:
    using Face::Face;
    /** As CHostHandler::createHost. @param host as there, kept as it is. @return as it. */
    HostMO createHost(HostMO host) const { return (*this)->createHost(host); }
};

/** Host groups. */
class HostGroups : public Face<CHostGroupHandler>
{
public:
    using Face::Face;
    /** As CHostGroupHandler::createHostGroup. @param hostGroup as there, kept as it is. @return as it. */
    HostGroupMO createHostGroup(HostGroupMO hostGroup) const { return (*this)->createHostGroup(hostGroup); }
    /** The host groups that hold a host. @param hostID,filter,pageSize as in Face. @return the list, unread.
     */
    Pages<HostGroupMO> ofHost(const std::string& hostID, const HostGroupMO& filter = HostGroupMO(),
                              unsigned long pageSize = RECORDS_OF_A_PAGE) const
    {
        return pages<HostGroupQuery>(&CHostGroupHandler::getHostGroupByHost, hostID, filter, pageSize);
    }
};

/** Mapping views. */
class MappingViews : public Face<CMappingViewHandler>
{
public:
    using Face::Face;
    /** As CMappingViewHandler::createMappingView. @param view as there, kept as it is. @return as it. */
    MappingViewMO createMappingView(MappingViewMO view) const { return (*this)->createMappingView(view); }
    /** The mapping views of a LUN group. @param lunGroupID,filter,pageSize as in Face. @return the list,
     * unread. */
    Pages<MappingViewMO> ofLunGroup(const std::string& lunGroupID,
                                    const MappingViewMO& filter = MappingViewMO(),
                                    unsigned long pageSize = RECORDS_OF_A_PAGE) const
    {
        return pages<MappingViewQuery>(&CMappingViewHandler::getMappingViewByLunGroup, lunGroupID, filter,
                                       pageSize);
    }
    /** The mapping views of a host group. @param hostGroupID,filter,pageSize as in Face. @return the list,
     * unread. */
    Pages<MappingViewMO> ofHostGroup(const std::string& hostGroupID,
                                     const MappingViewMO& filter = MappingViewMO(),
                                     unsigned long pageSize = RECORDS_OF_A_PAGE) const
    {
        return pages<MappingViewQuery>(&CMappingViewHandler::getMappingViewByHostGroup, hostGroupID, filter,
                                       pageSize);
    }
};

/** iSCSI initiators. */
class IscsiInitiators : public Face<CIscsiInitiatorHandler>
{
public:
    using Face::Face;
    /** As CIscsiInitiatorHandler::createIscsiInitiator. @param initiator as there, kept. @return as it. */
    IscsiInitiatorMO createIscsiInitiator(IscsiInitiatorMO initiator) const
    {
        return (*this)->createIscsiInitiator(initiator);
    }
    /** As CIscsiInitiatorHandler::modifyIscsiInitiator. @param initiator as there, kept as it is. */
    void modifyIscsiInitiator(IscsiInitiatorMO initiator) const { (*this)->modifyIscsiInitiator(initiator); }
};

/** FC initiators. */
class FCInitiators : public Face<CFCInitiatorHandler>
{
public:
    using Face::Face;
    /** As CFCInitiatorHandler::createFCInitiator. @param initiator as there, kept as it is. @return as it. */
    FCInitiatorMO createFCInitiator(FCInitiatorMO initiator) const
    {
        return (*this)->createFCInitiator(initiator);
    }
};

} // namespace tessel
} // namespace ovra

#endif
