#include "ui/LAudioFilters.h"

#include <QRegularExpression>
#include <QStringList>

#include "formats/LAudioFormat.h"

namespace {

// Qt splits a filter's patterns at spaces, and matches case by case on this system.
QString Patterns(const std::string& szList)
{
    QStringList out;
    for (const QString& s : QString::fromStdString(szList).split(';', Qt::SkipEmptyParts)) {
        out << s.toLower();
        if (s.toUpper() != s.toLower())
            out << s.toUpper();
    }
    out.removeDuplicates();
    return out.join(' ');
}

// "Wave Files(*.wav)" names its patterns already: the dialog adds them again, so they go.
QString LabelOf(const std::string& szLabel)
{
    QString s = QString::fromStdString(szLabel);
    s.remove(QRegularExpression("\\s*\\([^()]*\\)\\s*$"));
    return s.trimmed();
}

QString Filter(const std::vector<LAudioFileType>& vTypes)
{
    QStringList filters;
    filters << QString("Audio Files (%1)").arg(Patterns(LAudioFormat::AllPatterns(vTypes)));
    for (const LAudioFileType& type : vTypes)
        filters << QString("%1 (%2)").arg(LabelOf(type.szLabel), Patterns(type.szPatterns));
    filters << "All Files (*)";
    return filters.join(";;");
}

} // namespace

QString LAudioFilters::Open()
{
    // Disc images open through the CD dialog, as a drive does.
    return Filter(LAudioFormat::OpenTypes()).replace(";;All Files (*)", ";;CD Disc Images (*.cue *.toc *.CUE *.TOC);;All Files (*)");
}

QString LAudioFilters::Save()
{
    return Filter(LAudioFormat::SaveTypes());
}
