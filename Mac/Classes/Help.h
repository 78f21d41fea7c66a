#pragma once

class QWidget;

/// Opens the user guide in the web browser, or says in an alert why that cannot be.
void ShowUserGuide(QWidget* zpParent);
