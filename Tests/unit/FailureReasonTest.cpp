#include "AsyncSocketErrors.h"

#include <gtest/gtest.h>

#include <netdb.h>

#include <cerrno>
#include <ostream>

namespace {

struct sReason {
    const char* name;
    SocketError error;
    const char* reason;
};

void PrintTo(const sReason& zReason, std::ostream* zpStream) {
    *zpStream << zReason.name;
}

sReason System(const char* zName, int zErrno, const char* zReason) {
    return {zName, MakeErrnoError(zErrno), zReason};
}

sReason Resolver(const char* zName, int zCode, const char* zReason) {
    return {zName, *MakeStreamError({StreamErrorDomain::kNetDB, zCode}), zReason};
}

sReason Socket(const char* zName, AsyncSocketErrorCode zCode, const char* zReason) {
    return {zName, MakeSocketError(zCode), zReason};
}

class FailureReason : public ::testing::TestWithParam<sReason> {};

TEST_P(FailureReason, IsASentenceForPeople) {
    EXPECT_EQ(GetParam().error.localizedFailureReason(), GetParam().reason);
}

std::string NameOf(const ::testing::TestParamInfo<sReason>& zInfo) {
    return zInfo.param.name;
}

INSTANTIATE_TEST_SUITE_P(
    System, FailureReason,
    ::testing::Values(System("ECONNREFUSED", ECONNREFUSED, "nothing answers at this address and port"),
                      System("EHOSTUNREACH", EHOSTUNREACH, "there is no way to this address"),
                      System("ENETUNREACH", ENETUNREACH, "this computer is not on that network"),
                      System("ENETDOWN", ENETDOWN, "the network connection is down"),
                      System("EHOSTDOWN", EHOSTDOWN, "the device is switched off"),
                      System("ETIMEDOUT", ETIMEDOUT, "the device does not answer"),
                      System("ECONNRESET", ECONNRESET, "the device broke the connection off"),
                      System("ECONNABORTED", ECONNABORTED, "the connection was broken off"),
                      System("EPIPE", EPIPE, "the device has closed the connection"),
                      System("EACCES", EACCES, "this connection is not allowed"),
                      System("EPERM", EPERM, "this connection is not allowed"),
                      System("EADDRNOTAVAIL", EADDRNOTAVAIL, "this address cannot be used"),
                      System("EINVAL", EINVAL, "this address cannot be used"),
                      System("EMFILE", EMFILE, "too many files are open"),
                      System("ENFILE", ENFILE, "too many files are open")),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    Resolver, FailureReason,
    ::testing::Values(Resolver("EAI_NONAME", EAI_NONAME, "there is no device of this name or address"),
                      Resolver("EAI_NODATA", EAI_NODATA, "this name has no address"),
                      Resolver("EAI_AGAIN", EAI_AGAIN, "names cannot be looked up at the moment"),
                      Resolver("EAI_FAIL", EAI_FAIL, "the name could not be looked up")),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    Socket, FailureReason,
    ::testing::Values(
        Socket("Canceled", kAsyncSocketCanceledError, "the attempt was called off"),
        Socket("ConnectTimeout", kAsyncSocketConnectTimeoutError, "the device did not answer in time"),
        Socket("ReadMaxedOut", kAsyncSocketReadMaxedOutError, "the device sent more than expected"),
        Socket("ReadTimeout", kAsyncSocketReadTimeoutError, "the device did not send in time"),
        Socket("WriteTimeout", kAsyncSocketWriteTimeoutError, "the device did not take the data in time")),
    NameOf);

/// What else a system call or the resolver may report.
INSTANTIATE_TEST_SUITE_P(OnlyANumber, FailureReason,
                         ::testing::Values(System("EBADF", EBADF, "9"),
                                           Socket("CFSocket", kAsyncSocketCFSocketError, "-1"),
                                           sReason{"EPIPEElsewhere", {"elsewhere", EPIPE, ""}, "32"},
                                           sReason{"NoNameOfTheSystem", MakeErrnoError(-2), "-2"}),
                         NameOf);

} // namespace
