#ifndef OBSERVER_BODYOBJECTS_H
#define OBSERVER_BODYOBJECTS_H

#include <array>
#include <string>
#include <string_view>

namespace ovra::tessel {

/** An object of which a body tells type, ID and name in members of their own. */
struct BodyObject
{
    unsigned long type = 0;
    std::string id;
    std::string name;
};

/** The objects that the body of a request names, by the table of the members that do; no other member is
 * kept. */
class BodyObjects
{
public:
    enum Of
    {
        OWN,
        PARENT,
        ASSOCIATED,
        COUNT
    };

    void sends(std::string_view key, const std::string& text);
    void sends(std::string_view key, unsigned long number);

    BodyObject& own() { return m_objects[OWN]; }
    const BodyObject& own() const { return m_objects[OWN]; }
    const std::array<BodyObject, COUNT>& all() const { return m_objects; }

private:
    std::array<BodyObject, COUNT> m_objects;
};

} // namespace ovra::tessel

#endif
