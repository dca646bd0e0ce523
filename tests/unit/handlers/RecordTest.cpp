// Records as they are read from answers: every field, its default, and fields that cannot be read.

#include "unit/handlers/RecordTest.h"

#include <tessel/Fields.h>

#include <algorithm>

namespace {

using testing::ElementsAreArray;

bool contains(const Lines& lines, const std::string& line)
{
    return std::find(lines.begin(), lines.end(), line) != lines.end();
}

Json::Value parsed(const RecordCase& c)
{
    return Reply::object(c.json).records.front();
}

class EveryRecord : public HandlerTest, public testing::WithParamInterface<RecordCase>
{
protected:
    std::string readFrom(const Reply& reply)
    {
        platform.reply(reply);
        std::string values;
        EXPECT_EQ(outcomeOf([&] { values = GetParam().read(manager); }), Outcome::returned());
        EXPECT_THAT(platform.lines("record"), testing::ElementsAre("record " + GetParam().operation + " 0"));
        return values;
    }
};

TEST_P(EveryRecord, IsReadFieldByField)
{
    EXPECT_EQ(readFrom(Reply::object(GetParam().json)), GetParam().values);
}

TEST_P(EveryRecord, KeepsItsDefaultsWhenTheAnswerHoldsNone)
{
    EXPECT_EQ(readFrom(Reply::ok()), GetParam().defaults);
}

TEST_P(EveryRecord, WithoutAnIdIsTakenForNoneUnlessItIsAnInitiator)
{
    Json::Value record = parsed(GetParam());
    record.removeMember("ID");
    const std::string values = readFrom(Reply::ok({record}));
    if (GetParam().needsId) {
        EXPECT_EQ(values, GetParam().defaults);
    } else {
        EXPECT_EQ(values, "\"\"" + GetParam().values.substr(GetParam().values.find(' ')));
    }
}

TEST_P(EveryRecord, IsReadFromTheFirstOfSeveral)
{
    EXPECT_EQ(readFrom(Reply::ok({parsed(GetParam()), Json::Value("not looked at")})), GetParam().values);
}

TEST_P(EveryRecord, WithAFieldOfATypeThatCannotBeReadEndsLikeNoAnswer)
{
    const RecordCase& c = GetParam();
    const std::string message = journal::noAnswer(c.operation);
    for (const std::string& key : parsed(c).getMemberNames()) {
        for (const Json::Value& odd : {Json::Value(Json::arrayValue), Json::Value(Json::objectValue)}) {
            platform.reset();
            Json::Value record = parsed(c);
            record[key] = odd;
            record[key].isArray() ? record[key].append("x") : record[key]["x"] = "y";
            platform.reply(Reply::ok({record}));
            const Outcome outcome = outcomeOf([&] { c.read(manager); });
            if (contains(c.unread, key)) {
                EXPECT_EQ(outcome, Outcome::returned()) << key;
                continue;
            }
            EXPECT_EQ(outcome, Outcome::failed(message)) << key;
            const Lines seen = platform.journal();
            EXPECT_THAT(Lines(seen.begin() + 2, seen.end()),
                        testing::ElementsAre("error: " + message, "record! " + c.operation + " 10003"))
                << key;
        }
    }
}

TEST_P(EveryRecord, TakesNumbersForTextsButNoTextForAJsonNumber)
{
    const RecordCase& c = GetParam();
    for (const std::string& key : parsed(c).getMemberNames()) {
        platform.reset();
        Json::Value record = parsed(c);
        const bool number = contains(c.numbers, key);
        record[key] = number ? Json::Value("14") : Json::Value(14);
        platform.reply(Reply::ok({record}));
        const Outcome expected =
            number ? Outcome::failed(journal::noAnswer(c.operation)) : Outcome::returned();
        EXPECT_EQ(outcomeOf([&] { c.read(manager); }), expected) << key;
    }
}

const auto NAME = [](const auto& info) { return info.param.record; };
INSTANTIATE_TEST_SUITE_P(Storage, EveryRecord, testing::ValuesIn(storageRecords()), NAME);
INSTANTIATE_TEST_SUITE_P(Access, EveryRecord, testing::ValuesIn(accessRecords()), NAME);
INSTANTIATE_TEST_SUITE_P(Ports, EveryRecord, testing::ValuesIn(portRecords()), NAME);

// The particular ways in which single fields are read.

TEST_F(HandlerTest, FlagsAreSetOnlyByExactlyTrue)
{
    for (const char* const text : {"True", "TRUE", "1", "", " true", "true ", "yes", "false"}) {
        Json::Value record;
        record["ID"] = "1";
        for (const char* const key : {"ISADD2LUNGROUP", "EXPOSEDTOINITIATOR", "ISADD2MAPPINGVIEW",
                                      "ISADD2HOSTGROUP", "ENABLEINBANDCOMMAND", "ISFREE", "USECHAP"}) {
            record[key] = text;
        }
        platform.replyWith([&](const SentRequest&) { return Reply::ok({record}); });
        const LunMO lun = handlers::lun(manager).getLun("1");
        EXPECT_EQ(lun.ISADD2LUNGROUP, 0) << text;
        EXPECT_FALSE(lun.EXPOSEDTOINITIATOR) << text;
        EXPECT_EQ(handlers::lunGroup(manager).getLunGroup("1").ISADD2MAPPINGVIEW, 0) << text;
        EXPECT_EQ(handlers::host(manager).getHost("1").ISADD2HOSTGROUP, 0) << text;
        EXPECT_EQ(handlers::hostGroup(manager).getHostGroup("1").ISADD2MAPPINGVIEW, 0) << text;
        EXPECT_EQ(handlers::mappingView(manager).getMappingView("1").ENABLEINBANDCOMMAND, 0) << text;
        const IscsiInitiatorMO iscsi = handlers::iscsi(manager).getIscsiInitiator("1");
        EXPECT_FALSE(iscsi.ISFREE || iscsi.USECHAP) << text;
        EXPECT_FALSE(handlers::fc(manager).getFCInitiator("1").ISFREE) << text;
    }
}

TEST_F(HandlerTest, FlagsThatAreMissingReadAsUnsetAndBooleansAsTheirText)
{
    platform.reply(Reply::object(R"({"ID":"1"})"));
    EXPECT_EQ(handlers::host(manager).getHost("1").ISADD2HOSTGROUP, 0);
    platform.reply(Reply::object(R"({"ID":"1","ISADD2HOSTGROUP":true})"));
    EXPECT_EQ(handlers::host(manager).getHost("1").ISADD2HOSTGROUP, 1);
}

TEST_F(HandlerTest, TheUsageOfALunIsReadOnlyWhenItIsThinAndCarriesTheKey)
{
    platform.reply(Reply::object(R"({"ID":"1","ALLOCTYPE":"0","THINCAPACITYUSAGE":"55"})"));
    EXPECT_EQ(handlers::lun(manager).getLun("1").THINCAPACITYUSAGE, 0u);
    platform.reply(Reply::object(R"({"ID":"1","ALLOCTYPE":"1","THINCAPACITYUSAGE":"55"})"));
    EXPECT_EQ(handlers::lun(manager).getLun("1").THINCAPACITYUSAGE, 55u);
    platform.reply(Reply::object(R"({"ID":"1","ALLOCTYPE":"1"})"));
    EXPECT_EQ(handlers::lun(manager).getLun("1").THINCAPACITYUSAGE, 0u);
}

TEST_F(HandlerTest, ALunOf2048SectorsOf512BytesHolds1048576Bytes)
{
    platform.reply(Reply::object(R"({"ID":"1","SECTORSIZE":"512","CAPACITY":"2048","ALLOCCAPACITY":"3"})"));
    const LunMO lun = handlers::lun(manager).getLun("1");
    EXPECT_EQ(lun.CAPACITY, 1048576u);
    EXPECT_EQ(lun.ALLOCCAPACITY, 1536u);
    EXPECT_EQ(lun.ALLOCCAPACITYRAW, 3u);
}

TEST_F(HandlerTest, ACapacityBeyond64BitsReadsAsUnsetAndNeverAsASmallOne)
{
    platform.reply(Reply::object(
        R"({"ID":"1","SECTORSIZE":"512","CAPACITY":"36028797018963968","ALLOCCAPACITY":"36028797018963967"})"));
    const LunMO lun = handlers::lun(manager).getLun("1");
    EXPECT_EQ(lun.CAPACITY, UINT64_MAX) << "2 to the power of 64 bytes";
    EXPECT_EQ(lun.ALLOCCAPACITY, UINT64_MAX - 511);
    platform.reply(Reply::object(R"({"ID":"1","SECTORSIZE":"1","CAPACITY":"99999999999999999999"})"));
    EXPECT_EQ(handlers::lun(manager).getLun("1").CAPACITY, UINT64_MAX);
}

TEST_F(HandlerTest, ASpeedThatIsNoNumberReadsAs0)
{
    const std::map<std::string, int64_t> speeds = {
        {"16000", 16000}, {"-1", -1}, {"fast", 0}, {"", 0}, {"8 G", 8}};
    for (const auto& speed : speeds) {
        Json::Value record;
        record["ID"] = "1";
        record["RUNSPEED"] = speed.first;
        platform.replyWith([&](const SentRequest&) { return Reply::ok({record}); });
        EXPECT_EQ(handlers::fcPort(manager).getFCPort("1").RUNSPEED, speed.second) << speed.first;
        EXPECT_EQ(handlers::fcoePort(manager).getFCoEPort("1").RUNSPEED, speed.second) << speed.first;
    }
}

/** The names of the fields that hold a value. */
template <class Record>
std::vector<std::string> fieldsThatAreSet(const Record& record)
{
    std::vector<std::string> names;
    for (const RecordField& field : fieldsOf(record)) {
        if (field.isSet) {
            names.push_back(field.name);
        }
    }
    return names;
}

TEST(FieldsOfARecord, AreSetWhereTheyHoldMoreThanTheirDefault)
{
    HostMO host;
    EXPECT_THAT(fieldsThatAreSet(host), testing::IsEmpty()) << "0 of a code and 100 of a system are unset";
    host.PARENTTYPE = MO_HOSTGROUP;
    host.OPERATIONSYSTEM = 0;
    EXPECT_THAT(fieldsThatAreSet(host), testing::ElementsAre("PARENTTYPE", "OPERATIONSYSTEM"));
    EXPECT_THAT(fieldsThatAreSet(LunGroupMO()), testing::ElementsAre("GROUPTYPE")) << "any number is a value";
    IscsiInitiatorMO initiator;
    initiator.USECHAP = true;
    for (const RecordField& field : fieldsOf(initiator)) {
        EXPECT_TRUE(field.kind != RecordField::FLAG ||
                    field.value == (field.name == "USECHAP" ? "true" : "false"));
    }
}

TEST(FieldsOfARecord, NeverHoldASecretNorWhetherThereIsOne)
{
    IscsiInitiatorMO initiator;
    initiator.CHAPPASSWORD = "secret";
    unsigned secrets = 0;
    for (const RecordField& field : fieldsOf(initiator)) {
        secrets += field.isSecret ? 1 : 0;
        EXPECT_TRUE(!field.isSecret || (field.value.empty() && !field.isSet)) << field.name;
    }
    EXPECT_EQ(secrets, 4U);
}

TEST_F(HandlerTest, InitiatorFieldsThatAreMissingKeepTheirDefaults)
{
    platform.reply(Reply::object(R"({"ID":"iqn"})"));
    const IscsiInitiatorMO iscsi = handlers::iscsi(manager).getIscsiInitiator("iqn");
    EXPECT_EQ(iscsi.ID + iscsi.NORMALVERMODE + iscsi.DISCOVERYVERMODE + iscsi.NAME, "iqn00");
}

} // namespace
