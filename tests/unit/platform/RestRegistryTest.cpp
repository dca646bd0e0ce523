#include <SessionRegistry.h>
#include <Settings.h>

#include <ovra/log/LogAPI.h>

#include <gtest/gtest.h>
#include <openssl/crypto.h>

#include <atomic>
#include <cstdlib>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

std::vector<std::string>& warnings()
{
    static std::vector<std::string> lines;
    return lines;
}

} // namespace

// The log library's place is taken, so that a test sees what would be logged.
void Log_Run_Warn(const char* productTag, const char* text)
{
    warnings().push_back(std::string(productTag) + ": " + text);
}

namespace ovra::rest {
namespace {

CDeviceManagerImpl* identity(uintptr_t address)
{
    return reinterpret_cast<CDeviceManagerImpl*>(address);
}

class Registry : public testing::Test
{
protected:
    static bool add(CDeviceManagerImpl* manager, const std::string& token = "t",
                    const std::string& cookie = "c")
    {
        return CUserManager::getInstance()->addUser(manager, "dev", "192.0.2.7", 8088, token, cookie, true);
    }

    ~Registry() override
    {
        for (CDeviceManagerImpl* manager : {first, second, other}) {
            CUserManager::getInstance()->removeUser(manager);
        }
    }

    CUserManager& users = *CUserManager::getInstance();
    CDeviceManagerImpl* const first = identity(0x100001000);
    CDeviceManagerImpl* const second = identity(0x200001000); // the same low 32 bits
    CDeviceManagerImpl* const other = identity(0x100002000);
};

TEST_F(Registry, FindsASessionByTheLow32BitsOfItsIdentity)
{
    ASSERT_TRUE(add(first));
    const auto session = SessionRegistry::instance().find(0x1000);
    ASSERT_TRUE(session);
    EXPECT_EQ("dev", session->deviceId);
    EXPECT_EQ("192.0.2.7", session->ip);
    EXPECT_EQ(8088U, session->port);
    EXPECT_EQ("t", session->token);
    EXPECT_EQ("c", session->cookie);
    EXPECT_FALSE(SessionRegistry::instance().find(0x2000));
    EXPECT_FALSE(SessionRegistry::instance().find(0));
}

TEST_F(Registry, RefusesASecondIdentityWithTheSameKeyUntilTheFirstIsGone)
{
    ASSERT_TRUE(add(first, "one"));
    EXPECT_FALSE(add(second, "two"));
    EXPECT_TRUE(users.hasUser(first));
    EXPECT_FALSE(users.hasUser(second));
    EXPECT_EQ("one", SessionRegistry::instance().find(0x1000)->token);
    users.removeUser(second); // not its session
    EXPECT_TRUE(users.hasUser(first));
    users.removeUser(first);
    EXPECT_FALSE(users.hasUser(first));
    EXPECT_TRUE(add(second, "two"));
}

TEST_F(Registry, ReplacesTheSessionOfTheSameIdentity)
{
    ASSERT_TRUE(add(first, "one"));
    ASSERT_TRUE(add(first, "two"));
    EXPECT_EQ("two", SessionRegistry::instance().find(0x1000)->token);
    EXPECT_FALSE(add(first, "three\r\n"));
    EXPECT_EQ("two", SessionRegistry::instance().find(0x1000)->token);
}

TEST_F(Registry, RefusesWhatCannotBeSentOrFound)
{
    EXPECT_FALSE(add(nullptr));
    EXPECT_FALSE(add(identity(0x300000000))); // its key would be 0
    EXPECT_FALSE(add(first, "a\nb"));
    EXPECT_FALSE(add(first, "a", std::string("b\0", 2)));
    EXPECT_FALSE(users.hasUser(first));
    EXPECT_FALSE(users.hasUser(nullptr));
}

TEST_F(Registry, KeepsADeviceIdAsDataOfThePathAndRefusesOneThatIsAStepInIt)
{
    const auto addDevice = [this](const std::string& deviceId) {
        return CUserManager::getInstance()->addUser(first, deviceId, "192.0.2.7", 8088, "t", "c", true);
    };
    EXPECT_TRUE(addDevice("../a?b"));
    const unsigned int key = static_cast<unsigned int>(reinterpret_cast<uintptr_t>(first));
    EXPECT_EQ(SessionRegistry::instance().find(key)->deviceId, "..%2Fa%3Fb");
    EXPECT_FALSE(addDevice("."));
    EXPECT_FALSE(addDevice(".."));
    EXPECT_EQ(SessionRegistry::instance().find(key)->deviceId, "..%2Fa%3Fb") << "changed by a refusal";
}

TEST_F(Registry, MayBeUsedByManyThreads)
{
    std::atomic<unsigned> lost{0};
    std::vector<std::thread> threads;
    for (uintptr_t i = 1; i <= 4; ++i) {
        threads.emplace_back([&, i] {
            CDeviceManagerImpl* const mine = identity(0x500000000 + i * 16);
            for (int round = 0; round < 500; ++round) {
                lost += add(mine) && users.hasUser(mine) ? 0 : 1;
                users.removeUser(mine);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(0U, lost);
}

TEST(Settings, AreReadFromTheEnvironment)
{
    const EnvironmentSettings read = readEnvironment([](const char* name) -> const char* {
        const std::string wanted = name;
        return wanted == "OVRA_REST_CA_FILE"             ? "/ca.pem"
               : wanted == "OVRA_REST_PINNED_KEY"        ? "sha256//x"
               : wanted == "OVRA_REST_INSECURE"          ? "1"
               : wanted == "OVRA_REST_CONNECT_TIMEOUT_S" ? "5"
               : wanted == "OVRA_REST_TIMEOUT_S"         ? "86400"
                                                         : nullptr;
    });
    EXPECT_EQ("/ca.pem", read.settings.caFile);
    EXPECT_EQ("sha256//x", read.settings.pinnedKey);
    EXPECT_TRUE(read.settings.insecure);
    EXPECT_EQ(5, read.settings.connectTimeoutSeconds);
    EXPECT_EQ(86400, read.settings.timeoutSeconds);
    EXPECT_TRUE(read.problems.empty());
}

TEST(Settings, ThatCannotBeUsedKeepTheirDefaultsAndAreReported)
{
    const EnvironmentSettings read = readEnvironment([](const char* name) -> const char* {
        return std::string(name) == "OVRA_REST_CONNECT_TIMEOUT_S" ? "0"
               : std::string(name) == "OVRA_REST_TIMEOUT_S"       ? "5m"
               : std::string(name) == "OVRA_REST_INSECURE"        ? "yes"
                                                                  : "";
    });
    EXPECT_FALSE(read.settings.insecure);
    EXPECT_EQ(30, read.settings.connectTimeoutSeconds);
    EXPECT_EQ(300, read.settings.timeoutSeconds);
    EXPECT_EQ(3U, read.problems.size());
}

TEST(Settings, TheOptOutIsWarnedOfOnce)
{
    warnings().clear();
    RestSettings settings;
    warnAboutSettings(settings);
    EXPECT_TRUE(warnings().empty());
    settings.insecure = true;
    warnAboutSettings(settings);
    warnAboutSettings(settings);
    ASSERT_EQ(1U, warnings().size());
    EXPECT_EQ(0U, warnings().at(0).find("Ovra-Rest-API: servers are not verified"));
}

/// Handlers run last first: this one behind that of OpenSSL, if it had one.
void tellWhetherTlsIsThere()
{
    _exit(OPENSSL_init_crypto(0, nullptr) == 1 ? 0 : 1);
}

TEST(LibraryDeathTest, KeepsOpenSslAtTheEndOfAProcessAlsoWhereTheProgramStartsItFirst)
{
    const auto end = [] {
        atexit(tellWhetherTlsIsThere);
        OPENSSL_init_crypto(OPENSSL_INIT_LOAD_CRYPTO_STRINGS, nullptr);
        exit(0);
    };
    EXPECT_EXIT(end(), testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace ovra::rest
