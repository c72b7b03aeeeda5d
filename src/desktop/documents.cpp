// The desktop's default handlers.
#include "desktop/documents.h"

#include <QDesktopServices>
#include <QUrl>

#include "host/qt_text.h"

namespace gainsmith {

void OpenWithDesktop(const std::string& address) {
  const QString text = ToQt(address);
  const QUrl url(text);
  const bool isAddress = url.scheme().size() > 1;
  QDesktopServices::openUrl(isAddress ? url : QUrl::fromLocalFile(text));
}

}  // namespace gainsmith
