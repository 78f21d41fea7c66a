#include "AsyncSocketErrors.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTranslator>

#include <gtest/gtest.h>

#include <netdb.h>

#include <cerrno>
#include <cstring>

namespace {

struct SocketErrorCase {
    AsyncSocketErrorCode code;
    int number;
    const char* key;
    const char* description;
};

void PrintTo(const SocketErrorCase& c, std::ostream* stream) {
    *stream << c.key;
}

class AsyncSocketErrorTest : public ::testing::TestWithParam<SocketErrorCase> {};

TEST_P(AsyncSocketErrorTest, HasADomainACodeAndAText) {
    const SocketError error = MakeSocketError(GetParam().code);
    EXPECT_EQ(error.domain, "AsyncSocketErrorDomain");
    EXPECT_EQ(error.code, GetParam().number);
    EXPECT_EQ(error.description, GetParam().description);
}

/// A table of texts that knows every text of the sockets by its key alone.
class KeyTranslator : public QTranslator {
public:
    bool isEmpty() const override { return false; }

    QString translate(const char* zContext, const char* /*zText*/, const char* zKey,
                      int /*n*/) const override {
        const bool found = std::strcmp(zContext, "AsyncSocket") == 0 && zKey != nullptr;
        return found ? QString("translated ") + zKey : QString();
    }
};

TEST_P(AsyncSocketErrorTest, IsLookedUpInTheStringTableByItsKey) {
    KeyTranslator translator;
    QCoreApplication::installTranslator(&translator);
    const SocketError error = MakeSocketError(GetParam().code);
    QCoreApplication::removeTranslator(&translator);
    EXPECT_EQ(error.description, std::string("translated ") + GetParam().key);
}

INSTANTIATE_TEST_SUITE_P(
    Codes, AsyncSocketErrorTest,
    ::testing::Values(
        SocketErrorCase{kAsyncSocketCFSocketError, -1, "AsyncSocketCFSocketError", "General CFSocket error"},
        SocketErrorCase{kAsyncSocketCanceledError, 1, "AsyncSocketCanceledError", "Connection canceled"},
        SocketErrorCase{kAsyncSocketConnectTimeoutError, 2, "AsyncSocketConnectTimeoutError",
                        "Attempt to connect to host timed out"},
        SocketErrorCase{kAsyncSocketReadMaxedOutError, 3, "AsyncSocketReadMaxedOutError",
                        "Read operation reached set maximum length"},
        SocketErrorCase{kAsyncSocketReadTimeoutError, 4, "AsyncSocketReadTimeoutError",
                        "Read operation timed out"},
        SocketErrorCase{kAsyncSocketWriteTimeoutError, 5, "AsyncSocketWriteTimeoutError",
                        "Write operation timed out"}));

struct StreamErrorCase {
    StreamErrorDomain domain;
    int code;
    std::string expectedDomain;
    std::string expectedDescription;
};

void PrintTo(const StreamErrorCase& error, std::ostream* stream) {
    *stream << error.expectedDomain << " " << error.code;
}

class StreamErrorTest : public ::testing::TestWithParam<StreamErrorCase> {};

TEST_P(StreamErrorTest, BecomesAnErrorObject) {
    const std::optional<SocketError> error = MakeStreamError({GetParam().domain, GetParam().code});
    ASSERT_TRUE(error);
    EXPECT_EQ(error->domain, GetParam().expectedDomain);
    EXPECT_EQ(error->code, GetParam().code);
    EXPECT_EQ(error->description, GetParam().expectedDescription);
}

INSTANTIATE_TEST_SUITE_P(
    Domains, StreamErrorTest,
    ::testing::Values(
        StreamErrorCase{StreamErrorDomain::kPosix, ECONNREFUSED, "POSIX", std::strerror(ECONNREFUSED)},
        StreamErrorCase{StreamErrorDomain::kNetDB, EAI_NONAME, "kCFStreamErrorDomainNetDB",
                        ::gai_strerror(EAI_NONAME)},
        StreamErrorCase{StreamErrorDomain::kNetServices, 5, "kCFStreamErrorDomainNetServices", ""},
        StreamErrorCase{StreamErrorDomain::kSOCKS, 6, "kCFStreamErrorDomainSOCKS", ""},
        StreamErrorCase{StreamErrorDomain::kSystemConfiguration, 7, "kCFStreamErrorDomainSystemConfiguration",
                        ""},
        StreamErrorCase{StreamErrorDomain::kSSL, 8, "kCFStreamErrorDomainSSL", ""},
        StreamErrorCase{static_cast<StreamErrorDomain>(4711), 9, "CFStreamError (unlisted domain)", ""}));

TEST(AsyncSocketErrorsTest, NoStreamErrorIsNoObject) {
    EXPECT_FALSE(MakeStreamError({}));
}

TEST(AsyncSocketErrorsTest, AFailedSystemCallKeepsItsErrno) {
    const SocketError error = MakeErrnoError(EMFILE);
    EXPECT_EQ(error.domain, "POSIX");
    EXPECT_EQ(error.code, EMFILE);
    EXPECT_EQ(error.description, std::strerror(EMFILE));
}

TEST(AsyncSocketErrorsTest, KnownErrorsHaveAReason) {
    EXPECT_EQ(MakeErrnoError(ECONNREFUSED).localizedFailureReason(),
              "nothing answers at this address and port");
    for (const int code : {EHOSTUNREACH, ENETUNREACH, ETIMEDOUT, ECONNRESET, EPIPE}) {
        EXPECT_NE(MakeErrnoError(code).localizedFailureReason(), std::to_string(code));
    }
    const SocketError unknownName = *MakeStreamError({StreamErrorDomain::kNetDB, EAI_NONAME});
    EXPECT_EQ(unknownName.localizedFailureReason(), "there is no device of this name or address");
    EXPECT_EQ(MakeSocketError(kAsyncSocketReadTimeoutError).localizedFailureReason(),
              "the device did not send in time");
}

TEST(AsyncSocketErrorsTest, OtherErrorsHaveTheirNumberAsReason) {
    EXPECT_EQ(MakeErrnoError(EXDEV).localizedFailureReason(), std::to_string(EXDEV));
    EXPECT_EQ(MakeSocketError(kAsyncSocketCFSocketError).localizedFailureReason(), "-1");
    const SocketError otherDomain{"elsewhere", ECONNREFUSED, ""};
    EXPECT_EQ(otherDomain.localizedFailureReason(), std::to_string(ECONNREFUSED));
}

} // namespace
