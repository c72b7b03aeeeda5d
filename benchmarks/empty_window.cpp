// The least that a Qt program with a main window does; its arguments are a line of text in it.
#include <QApplication>
#include <QLabel>
#include <QMainWindow>

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QMainWindow window;
  if (argc > 1) window.setCentralWidget(new QLabel(argv[1]));
  window.showMaximized();
  return QApplication::exec();
}
