#include "ui/batch/LSelectSaveFormatDlg.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

#include <filesystem>
#include <system_error>

#include "core/LSettings.h"
#include "formats/LAudioFormat.h"
#include "ui/LSaveFormatOptions.h"
#include "ui/LUiPrompts.h"

namespace {
const char* const kSection = "BatchConverter";

// "*.wav;*.wave" gives ".wav".
std::string FirstExtension(const std::string& szPatterns)
{
    const size_t nDot = szPatterns.find('.');
    const size_t nEnd = szPatterns.find(';');
    return nDot == std::string::npos ? "" : szPatterns.substr(nDot, nEnd == std::string::npos ? std::string::npos : nEnd - nDot);
}
} // namespace

LSelectSaveFormatDlg::LSelectSaveFormatDlg(QWidget* pParent) : QDialog(pParent)
{
    setObjectName("LSelectSaveFormatDlg");
    setWindowTitle(tr("Batch Converter - Output"));
    auto* pForm = new QFormLayout(this);
    auto* pFormatRow = new QHBoxLayout;
    pFormat = new QComboBox(this);
    pFormat->setObjectName("OutputFormat");
    const std::string szLast = LSettings::GetString(kSection, "Format", "WAV");
    for (const LAudioFormat* p : LAudioFormat::All()) {
        if (p->GetEncodings().empty() || p->GetFileTypes().empty())
            continue;
        const LAudioFileType type = p->GetFileTypes().front();
        pFormat->addItem(QString::fromStdString(type.szLabel), QString::fromLatin1(p->GetName()));
        if (szLast == p->GetName())
            pFormat->setCurrentIndex(pFormat->count() - 1);
    }
    pOptions = new QPushButton(tr("Options..."), this);
    connect(pOptions, &QPushButton::clicked, this, [this] { QTimer::singleShot(0, this, &LSelectSaveFormatDlg::CmFormatOptions); });
    auto UpdateOptions = [this] {
        pOptions->setEnabled(LSaveFormatOptions::HasDialog(FormatName()));
        output.encoding = LAudioEncoding();
    };
    connect(pFormat, &QComboBox::currentIndexChanged, this, UpdateOptions);
    UpdateOptions();
    pFormatRow->addWidget(pFormat, 1);
    pFormatRow->addWidget(pOptions);
    pForm->addRow(tr("Output format:"), pFormatRow);

    auto* pFolderRow = new QHBoxLayout;
    pFolder = new QLineEdit(QString::fromStdString(LSettings::GetString(kSection, "OutputFolder")), this);
    pFolder->setObjectName("OutputFolder");
    pFolder->setPlaceholderText(tr("beside each file"));
    auto* pBrowse = new QPushButton(tr("Browse..."), this);
    connect(pBrowse, &QPushButton::clicked, this, [this] {
        QTimer::singleShot(0, this, [this] {
            const QString sz = QFileDialog::getExistingDirectory(this, tr("Output Folder"), pFolder->text());
            if (!sz.isEmpty())
                pFolder->setText(sz);
        });
    });
    pFolderRow->addWidget(pFolder, 1);
    pFolderRow->addWidget(pBrowse);
    pForm->addRow(tr("Output folder:"), pFolderRow);
    auto* pButtons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    pButtons->addButton(tr("Convert"), QDialogButtonBox::AcceptRole);
    connect(pButtons, &QDialogButtonBox::accepted, this, &LSelectSaveFormatDlg::CmOk);
    connect(pButtons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    pForm->addRow(pButtons);
}

std::string LSelectSaveFormatDlg::FormatName() const
{
    return pFormat->currentData().toString().toStdString();
}

std::string LSelectSaveFormatDlg::Extension() const
{
    const LAudioFormat* p = LAudioFormat::ByName(FormatName());
    return p && !p->GetFileTypes().empty() ? FirstExtension(p->GetFileTypes().front().szPatterns) : "";
}

void LSelectSaveFormatDlg::CmFormatOptions()
{
    // The outputs keep their inputs' rates and channels; the dialog is shown for a common shape.
    LAudioEncoding encoding = output.encoding;
    if (LUiPrompts::Get().AskSaveOptions(this, FormatName(), 44100, 2, encoding))
        output.encoding = encoding;
}

void LSelectSaveFormatDlg::CmOk()
{
    const std::string szFolder = pFolder->text().trimmed().toStdString();
    if (!szFolder.empty()) {
        std::error_code ec;
        std::filesystem::create_directories(szFolder, ec);
        if (!std::filesystem::is_directory(szFolder, ec)) {
            LUiPrompts::Get().Inform(this, "Sonitra", tr("The folder \"%1\" cannot be used.").arg(pFolder->text()),
                                     LUiPrompts::IconWarning);
            return;
        }
    }
    output.szFolder = szFolder;
    output.szExtension = Extension();
    if (output.szExtension.empty())
        return;
    LSettings::SetString(kSection, "Format", FormatName());
    LSettings::SetString(kSection, "OutputFolder", szFolder);
    QDialog::accept();
}
