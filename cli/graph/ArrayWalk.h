#ifndef GRAPH_ARRAYWALK_H
#define GRAPH_ARRAYWALK_H

#include "attach/Attachable.h"
#include "graph/Graph.h"

#include <optional>

namespace tesselctl {

/** Whether the members of LUN groups are read too: every LUN costs a request. */
enum class Members
{
    READ,
    LEAVE_OUT
};

/**
 * Reads from the array what hangs together. Each walk adds to the graph and returns the node it began with.
 */
class ArrayWalk
{
public:
    ArrayWalk(Session& session, Graph& graph) : m_session(session), m_graph(graph) {}

    /** An initiator by its name, iSCSI (iqn., eui., naa.) or a port WWN, its host and what the host sees. */
    size_t fromInitiator(const std::string& id, Members members);
    size_t fromHost(const std::string& id, Members members);
    /**
     * Back from a LUN or snapshot to the host groups that see it. The array does not tell the hosts of a
     * group.
     */
    size_t fromUnit(const Attachable& kind, const std::string& id);

private:
    void onFromHostGroup(size_t hostGroup, Members members);
    void addMembers(size_t lunGroup);
    void backFromLunGroup(size_t lunGroup);

    Session& m_session;
    Graph& m_graph;
};

} // namespace tesselctl

#endif
