#include "Help.h"

#include "Alert.h"
#include "UserGuide.h"

void ShowUserGuide(QWidget* zpParent) {
    const std::string problem = OpenUserGuide();
    if (!problem.empty()) {
        ShowAlert(zpParent, "The user guide cannot be shown", problem, AlertOk);
    }
}
