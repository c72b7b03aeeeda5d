// Between std::string and QString.
#include "host/qt_text.h"

namespace gainsmith {

QString ToQt(const std::string& text) { return QString::fromStdString(text); }
std::string FromQt(const QString& text) { return text.toStdString(); }

}  // namespace gainsmith
