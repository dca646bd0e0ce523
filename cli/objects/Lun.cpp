#include "objects/Listing.h"
#include "objects/Operations.h"
#include "objects/Tables.h"

namespace tesselctl {
namespace {

constexpr uint64_t SECTOR = 512;
constexpr uint64_t WHOLE_PERCENT = 100;

const Choices<uint32_t>& allocation()
{
    static const Choices<uint32_t> choices = {{"thick", 0}, {"thin", 1}};
    return choices;
}

Inputs<LunMO> newLun()
{
    return {
        textInput("--name", "NAME", "name of the LUN", &LunMO::NAME).required(),
        textInput("--pool", "ID", "storage pool that it is made of", &LunMO::PARENTID).required(),
        sizeInput("--size", "capacity, such as 10GiB; rounded down to 512 bytes", &LunMO::CAPACITY)
            .required(),
        textInput("--id", "ID", "ID to be given to it; the array chooses otherwise", &LunMO::ID),
        textInput("--description", "TEXT", "description", &LunMO::DESCRIPTION),
        choiceInput("--type", "TYPE", "thick (default) or thin", &LunMO::ALLOCTYPE, allocation()),
        sizeInput("--initial-size", "thin: capacity to allocate at once", &LunMO::ALLOCCAPACITY),
        numberInput("--usage-threshold", "PERCENT", "thin: share of the capacity in use that raises an alarm",
                    &LunMO::THINCAPACITYUSAGE, WHOLE_PERCENT),
        textInput("--controller", "ID", "controller that is to own it", &LunMO::OWNINGCONTROLLER),
    };
}

uint64_t inSectors(Context& context, const char* option, uint64_t bytes)
{
    if (bytes < SECTOR) {
        throw UsageError(std::string(option) + " is less than one sector of 512 bytes");
    }
    if (bytes % SECTOR != 0) {
        context.printer().note(std::string(option) + ": " + std::to_string(bytes) +
                               " bytes are no multiple of 512; the array is asked for " +
                               std::to_string(bytes - bytes % SECTOR));
    }
    return bytes - bytes % SECTOR;
}

void complete(Context& context, LunMO& lun)
{
    const bool isThin = context.text("--type") == "thin";
    if (!isThin && (context.has("--initial-size") || context.has("--usage-threshold"))) {
        throw UsageError("--initial-size and --usage-threshold need --type thin");
    }
    lun.CAPACITY = inSectors(context, "--size", lun.CAPACITY);
    if (!isThin) {
        return;
    }
    // All ones would be sent as they are: an absurd initial capacity.
    lun.ALLOCCAPACITY =
        context.has("--initial-size") ? inSectors(context, "--initial-size", lun.ALLOCCAPACITY) : 0;
    if (lun.ALLOCCAPACITY > lun.CAPACITY) {
        throw UsageError("--initial-size is more than --size");
    }
    if (!context.has("--usage-threshold")) {
        lun.THINCAPACITYUSAGE = WHOLE_PERCENT + 1; // not sent
    }
}

Inputs<LunMO> filters()
{
    return {
        textInput("--id", "ID", "only the one with this ID", &LunMO::ID),
        textInput("--name", "NAME", "only those with this name", &LunMO::NAME),
        textInput("--pool", "ID", "only those of this storage pool", &LunMO::PARENTID),
        choiceInput("--type", "TYPE", "only thick or thin ones", &LunMO::ALLOCTYPE, allocation()),
        numberInput("--running-status", "CODE", "only those in this state", &LunMO::RUNNINGSTATUS),
        numberInput("--health-status", "CODE", "only those in this health", &LunMO::HEALTHSTATUS),
        choiceInput("--in-group", "YES/NO", "only those in a LUN group, or in none", &LunMO::ISADD2LUNGROUP,
                    yesOrNo()),
    };
}

} // namespace

Commands lunCommands()
{
    const ObjectKind lun{{"lun"}, "LUN", "ID", {"ID", "NAME", "CAPACITY", "RUNNINGSTATUS", "WWN"}};
    return {
        createCommand(lun, newLun(), &CLunHandler::createLun, {}, complete),
        showCommand(lun, &CLunHandler::getLun),
        listCommand<LunMO, LunQuery>(
            lun,
            {ofGroup(by("--group", "ID", "LUN group", &CLunHandler::getLunByLunGroup)),
             by("--host", "ID", "host", &CLunHandler::getLunByHost)},
            filters()),
    };
}

} // namespace tesselctl
