#include "ui/filechooser.h"

#include <QApplication>
#include <QFileDialog>
#include <QStringList>

#include "session/mainwindow.h"

namespace molvera::ui {

QString QtFileChooser::OpenFile(const QString& title, const QString& filter, const QString& name) {
    return QFileDialog::getOpenFileName(QApplication::activeWindow(), title, name, filter);
}

QString QtFileChooser::SaveFile(const QString& title, const QString& filter, const QString& name) {
    return QFileDialog::getSaveFileName(QApplication::activeWindow(), title, name, filter);
}

QString QtFilter(std::string_view filterText) {
    const QStringList parts =
        QString::fromLatin1(filterText.data(), static_cast<qsizetype>(filterText.size()))
            .split(QLatin1Char('|'));
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        const QString desc = parts[i].trimmed();
        const QString pattern = parts[i + 1].trimmed();
        if (pattern.isEmpty()) continue;
        const QString wanted = QLatin1Char('(') + pattern + QLatin1Char(')');
        filters << (desc.contains(wanted) ? desc : desc + QLatin1Char(' ') + wanted);
    }
    return filters.join(QStringLiteral(";;"));
}

static QString Q(std::string_view s) {
    return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size()));
}

std::string FileDialog::Open(std::string_view title, std::string_view filterText) {
    const QString path = chooser_.OpenFile(Q(title), QtFilter(filterText), Q(last_));
    if (path.isEmpty()) return {};
    last_ = path.toStdString();
    return last_;
}

std::string FileDialog::Save(std::string_view title, std::string_view filterText,
                             const std::string& extension) {
    const std::string proposal = extension.empty() ? last_ : ProposeFileName(last_, extension);
    const QString path = chooser_.SaveFile(Q(title), QtFilter(filterText), Q(proposal));
    if (path.isEmpty()) return {};
    last_ = path.toStdString();
    return last_;
}

}  // namespace molvera::ui
