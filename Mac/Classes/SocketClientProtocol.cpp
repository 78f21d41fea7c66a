#include "SocketClientProtocol.h"

#include "Controller.h"

int cSocketClientProtocol::Send(const char* zpData, int zLength) {
    return mpController->SendBytes(zpData, zLength);
}
