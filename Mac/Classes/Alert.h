#pragma once

#include <string>

class QWidget;

/// The buttons of an alert; the first one is the default. Any other kind shows the toolkit's own button.
enum { AlertOk = 0, AlertYesNo = 1, AlertOkCancel = 2 };

/// Shows an alert and blocks, pumping the event loop, until it is answered. zMessage is a template without
/// arguments ("%%" is shown as "%"). Title and message are looked up for translation here; what is translated
/// already passes as it is. Returns 1 for the first button, 0 for the second, for closing the alert and for
/// quitting.
int ShowAlert(QWidget* zpParent, const std::string& zTitle, const std::string& zMessage, int zKind);

/// Shows in the same way, with "OK", that something has been done.
void ShowNote(QWidget* zpParent, const std::string& zTitle, const std::string& zMessage);

/// Shows in the same way, with the program's icon and "OK", what the program says of itself.
void ShowAbout(QWidget* zpParent, const std::string& zTitle, const std::string& zMessage);
