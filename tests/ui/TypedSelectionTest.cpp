// Times typed into the selection fields of the frame move the selection; a time outside the
// file is refused and the field shows its old value again; the field's own keys stay its own.
#include <QLineEdit>
#include <QtTest>

#include "core/LEdFile.h"
#include "ui/LEdWaveWindow.h"
#include "ui/LTimeFields.h"
#include "UiTestSupport.h"

using namespace uitest;

class TypedSelectionTest : public QObject, public FrameFixture
{
    Q_OBJECT
private:
    LEdFileWindow* pWindow = nullptr;

    LTimeFields* Fields() const { return frame->findChild<LTimeFields*>("TimeFields"); }
    QLineEdit* Field(LTimeFields::Field f) const { return Fields()->GetField(f); }

    // Clicks into the field, types the text over what it shows and presses Enter.
    void Type(LTimeFields::Field f, const QString& szText)
    {
        QLineEdit* p = Field(f);
        QTest::mouseClick(p, Qt::LeftButton);
        QTRY_VERIFY(p->hasFocus());
        p->selectAll();
        QTest::keyClicks(p, szText);
        QTest::keyClick(p, Qt::Key_Return);
    }

    // Ten seconds of a 44.1 kHz stereo file, opened through File > Open.
    LEdFileWindow* OpenTenSeconds()
    {
        const QString szPath = h->File("ten.wav");
        WriteWav16(szPath, 44100, 2, std::vector<int16_t>(441000 * 2, 0));
        h->prompts.openNames.push_back({szPath});
        if (!frame->Command(CmOpenId))
            return nullptr;
        frame->activateWindow(); // the progress dialog of the load had it
        return QTest::qWaitForWindowActive(frame.get()) ? frame->GetCurrentFileWindow() : nullptr;
    }

private slots:
    void init()
    {
        QVERIFY(Start());
        pWindow = OpenTenSeconds();
        QVERIFY(pWindow);
    }
    void cleanup() { Stop(); }

    void everyTimeFormMovesTheStart()
    {
        LEdFile& file = pWindow->GetFile();
        Type(LTimeFields::FieldSelStart, "0:00:02.500");
        QCOMPARE(file.GetSelStart(), 110250);
        QCOMPARE(file.GetSelEnd(), 441000); // with no selection before, it runs to the end
        QCOMPARE(Field(LTimeFields::FieldSelStart)->text(), QString("0:00:02.500"));
        QCOMPARE(Field(LTimeFields::FieldSelLength)->text(), QString("0:00:07.500"));
        QVERIFY(h->prompts.informs.isEmpty());

        const struct
        {
            const char* szTyped;
            int32_t sStart;
        } forms[] = {
            {"00:03", 3 * 44100},           // minutes and seconds
            {"0:00:01.5", 66150},           // tenths
            {"0:00:04.25", 4 * 44100 + 11025}, // hundredths
            {"0:00:05", 5 * 44100},         // whole seconds
            {"1.5s", 66150},
            {"250ms", 11025},
        };
        for (const auto& f : forms) {
            Type(LTimeFields::FieldSelStart, f.szTyped);
            QVERIFY2(file.GetSelStart() == f.sStart, f.szTyped);
            QCOMPARE(file.GetSelEnd(), 441000);
        }
        QVERIFY(h->prompts.informs.isEmpty());
    }

    void endAndLengthMoveTheirEdge()
    {
        LEdFile& file = pWindow->GetFile();
        pWindow->SetSelection(44100, 88200);
        Type(LTimeFields::FieldSelEnd, "0:00:06.000");
        QCOMPARE(file.GetSelStart(), 44100);
        QCOMPARE(file.GetSelEnd(), 6 * 44100);
        Type(LTimeFields::FieldSelLength, "0:00:00.500");
        QCOMPARE(file.GetSelStart(), 44100);
        QCOMPARE(file.GetSelEnd(), 44100 + 22050);
        // A start past the end keeps the selection's length.
        Type(LTimeFields::FieldSelStart, "0:00:08.000");
        QCOMPARE(file.GetSelStart(), 8 * 44100);
        QCOMPARE(file.GetSelEnd(), 8 * 44100 + 22050);
        // The whole file is a valid selection.
        Type(LTimeFields::FieldSelStart, "0:00:00.000");
        Type(LTimeFields::FieldSelEnd, "0:00:10.000");
        QCOMPARE(file.GetSelStart(), 0);
        QCOMPARE(file.GetSelEnd(), 441000);
        QVERIFY(h->prompts.informs.isEmpty());
    }

    void aTimeOutsideTheFileIsRefusedAndTheFieldRestored()
    {
        LEdFile& file = pWindow->GetFile();
        pWindow->SetSelection(44100, 88200);
        for (const char* szBad : {"0:00:10.001", "0:01:00", "-0:00:01.000"}) {
            Type(LTimeFields::FieldSelStart, szBad);
            QCOMPARE(h->prompts.informs.size(), 1);
            QVERIFY2(h->prompts.informs.takeFirst().contains("lies outside the file"), szBad);
            QCOMPARE(Field(LTimeFields::FieldSelStart)->text(), QString("0:00:01.000"));
        }
        Type(LTimeFields::FieldSelLength, "0:00:09.500"); // from 1 s: past the end
        QCOMPARE(h->prompts.informs.size(), 1);
        QVERIFY(h->prompts.informs.takeFirst().contains("lies outside the file"));
        QCOMPARE(Field(LTimeFields::FieldSelLength)->text(), QString("0:00:01.000"));
        Type(LTimeFields::FieldSelEnd, "soon");
        QCOMPARE(h->prompts.informs.size(), 1);
        QVERIFY(h->prompts.informs.takeFirst().contains("is not a time"));
        QCOMPARE(Field(LTimeFields::FieldSelEnd)->text(), QString("0:00:02.000"));
        QCOMPARE(file.GetSelStart(), 44100);
        QCOMPARE(file.GetSelEnd(), 88200);
    }

    void theFieldKeepsItsOwnKeys()
    {
        LEdFile& file = pWindow->GetFile();
        pWindow->SetSelection(44100, 88200);
        QLineEdit* p = Field(LTimeFields::FieldSelStart);
        QTest::mouseClick(p, Qt::LeftButton);
        QTRY_VERIFY(p->hasFocus());
        p->deselect();
        QTest::keyClick(p, Qt::Key_A, Qt::ControlModifier);
        QCoreApplication::processEvents();
        QCOMPARE(p->selectedText(), QString("0:00:01.000"));
        QCOMPARE(file.GetSelStart(), 44100); // the file's selection is left alone
        QCOMPARE(file.GetSelEnd(), 88200);
        // Escape puts back what was shown.
        QTest::keyClicks(p, "12");
        QTest::keyClick(p, Qt::Key_Escape);
        QCOMPARE(p->text(), QString("0:00:01.000"));
        // Outside the fields Ctrl+A still selects the whole file.
        pWindow->GetDetail()->setFocus();
        QTest::keyClick(frame.get(), Qt::Key_A, Qt::ControlModifier);
        QTRY_COMPARE(file.GetSelEnd(), 441000);
        QCOMPARE(file.GetSelStart(), 0);
    }
};

QTEST_MAIN(TypedSelectionTest)
#include "TypedSelectionTest.moc"
