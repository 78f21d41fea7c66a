#pragma once

#include "ClientProtocol.h"

class Controller;

/// The protocol client of the program: it sends through the controller's connection.
class cSocketClientProtocol : public cClientProtocol {
public:
    explicit cSocketClientProtocol(Controller& zrController) : mpController(&zrController) {}

    int Send(const char* zpData, int zLength) override;

private:
    Controller* mpController;
};
