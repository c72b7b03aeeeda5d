// The least that a Qt program with a main window does that shows a word: with its first letter the
// font library reads its configuration and its caches, which no window with a menu can do without.
#include <QApplication>
#include <QLabel>
#include <QMainWindow>

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QMainWindow window;
  window.setCentralWidget(new QLabel(QStringLiteral("word")));
  window.showMaximized();
  return QApplication::exec();
}
