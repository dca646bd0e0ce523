#include "objects/ObjectKind.h"

#include "text/Display.h"

namespace tesselctl {

void tellAction(Context& context, const ObjectKind& kind, const std::string& id, const std::string& action,
                const std::string& sentence, const Json::Value& more)
{
    Json::Value json = more;
    json["action"] = action;
    json["object"] = kind.title;
    json["id"] = validUtf8(id);
    context.printer().result(printable(sentence) + "\n", json);
}

} // namespace tesselctl
