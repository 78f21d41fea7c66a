#include <QtWidgets/QApplication>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QTableWidget>

// The least that a program with a window and a table can be: what the start of Quillbox is measured against.

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QMainWindow window;
    window.setCentralWidget(new QTableWidget(0, 4));
    window.resize(800, 600);
    window.show();
    return QApplication::exec();
}
