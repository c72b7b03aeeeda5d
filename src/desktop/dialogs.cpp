// Dialogs of the desktop world.
#include "desktop/dialogs.h"

#include <QColorDialog>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QMessageBox>
#include <QSpacerItem>

#include "desktop/record_values.h"
#include "host/qt_text.h"

namespace gainsmith {
namespace {

QMessageBox::Icon IconOf(MessageIcon icon) {
  switch (icon) {
    case MessageIcon::Critical:
      return QMessageBox::Critical;
    case MessageIcon::Warning:
      return QMessageBox::Warning;
    case MessageIcon::Information:
      return QMessageBox::Information;
    case MessageIcon::None:
      break;
  }
  return QMessageBox::NoIcon;
}

// "*.*" asks for a point in the name on systems that take it at its word.
QString PatternOf(const QString& pattern) {
  QStringList parts = pattern.split(u';', Qt::SkipEmptyParts);
  for (QString& part : parts) {
    part = part.trimmed();
    if (part == u"*.*") part = QStringLiteral("*");
  }
  return parts.join(u' ');
}

QString PatternInBrackets(const QString& description) {
  const qsizetype open = description.indexOf(u'(');
  const qsizetype close = description.indexOf(u')', open);
  return open < 0 || close < 0 ? QStringLiteral("*") : description.mid(open + 1, close - open - 1);
}

QString WithoutBrackets(const QString& description) {
  const qsizetype open = description.indexOf(u'(');
  return (open < 0 ? description : description.left(open)).trimmed();
}

// The extension that a name without one gets, from the first pattern ("*.tvd").
QString DefaultSuffix(const std::string& filter) {
  const QString pattern = ToQt(filter).section(u'|', 1, 1);
  return pattern.startsWith(u"*.") && !pattern.contains(u"*.*") ? pattern.mid(2) : QString();
}

}  // namespace

QStringList NameFilters(const std::string& filter) {
  const QStringList parts = ToQt(filter).split(u'|', Qt::SkipEmptyParts);
  QStringList filters;
  for (qsizetype i = 0; i < parts.size(); i += 2) {
    const QString pattern = i + 1 < parts.size() ? parts[i + 1] : PatternInBrackets(parts[i]);
    filters.push_back(QStringLiteral("%1 (%2)").arg(WithoutBrackets(parts[i]), PatternOf(pattern)));
  }
  return filters;
}

// Makes the box wide enough for its title between the window manager's buttons, whose letters may
// be larger than ours.
void MakeRoomForTitle(QMessageBox& box) {
  constexpr int ButtonsPixels = 150;
  auto* grid = qobject_cast<QGridLayout*>(box.layout());
  if (grid == nullptr) return;
  const int width = box.fontMetrics().horizontalAdvance(box.windowTitle()) * 4 / 3 + ButtonsPixels;
  grid->addItem(new QSpacerItem(width, 0), grid->rowCount(), 0, 1, grid->columnCount());
}

MessageAnswer RunMessageBox(QWidget* parent, const Message& message) {
  QMessageBox box(parent);
  box.setTextFormat(Qt::PlainText);
  box.setText(ShownText(message.Text));
  box.setWindowTitle(ToQt(message.Title));
  box.setIcon(IconOf(message.Icon));
  MakeRoomForTitle(box);
  if (message.Buttons == MessageButtons::Ok) {
    box.setStandardButtons(QMessageBox::Ok);
    box.exec();
    return MessageAnswer::Ok;
  }
  box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
  box.setDefaultButton(message.Default == MessageAnswer::Yes ? QMessageBox::Yes : QMessageBox::No);
  box.setEscapeButton(QMessageBox::No);
  return box.exec() == QMessageBox::Yes ? MessageAnswer::Yes : MessageAnswer::No;
}

ChosenFile RunFileDialog(QWidget* parent, FilePurpose purpose, const std::string& filter) {
  QFileDialog dialog(parent);
  // The same dialog on every desktop.
  dialog.setOption(QFileDialog::DontUseNativeDialog);
  dialog.setOption(QFileDialog::DontConfirmOverwrite);
  const bool opens = purpose == FilePurpose::Open;
  dialog.setWindowTitle(opens ? QStringLiteral("Open") : QStringLiteral("Save As"));
  dialog.setAcceptMode(opens ? QFileDialog::AcceptOpen : QFileDialog::AcceptSave);
  dialog.setFileMode(opens ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
  dialog.setNameFilters(NameFilters(filter));
  if (!opens) dialog.setDefaultSuffix(DefaultSuffix(filter));
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return {};
  return {ChosenFile::Outcome::Chosen, FromQt(dialog.selectedFiles().constFirst())};
}

std::optional<Colour> RunColourDialog(QWidget* parent, Colour present) {
  QColorDialog dialog(parent);
  dialog.setOption(QColorDialog::DontUseNativeDialog);
  dialog.setCurrentColor(FixedColour(present).value_or(QColor(Qt::white)));
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  return ColourOf(dialog.selectedColor());
}

}  // namespace gainsmith
