// The slide show on a real LibreOffice Impress, on a private X display: one
// office for the whole executable, started the way Mirabend starts it (its
// own profile and pipe) and stopped by its process id at the end. The decks
// are three solid-colour slides, so what the pane shows is checked by the
// colour at its centre.
#include "OfficeDecks.h"
#include "SlideStage.h"
#include "shell/slideshow/ImpressProgram.h"
#include "shell/slideshow/OfficeProcess.h"
#include "shell/slideshow/SlideShow.h"
#include "support/ChildProcess.h"

#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QLineEdit>
#include <QMainWindow>
#include <QPixmap>
#include <QScreen>
#include <QSet>
#include <QSignalSpy>
#include <QTest>
#include <csignal>
#include <gtest/gtest.h>

namespace mirabend::test {
namespace {

const QColor kRed(255, 0, 0);
const QColor kGreen(0, 255, 0);
const QColor kBlue(0, 0, 255);
const QColor kEmptyPane(128, 128, 128);
constexpr int kOpenWaitMs = 60000;

bool near(const QColor& a, const QColor& b) {
    return std::abs(a.red() - b.red()) < 40 && std::abs(a.green() - b.green()) < 40 &&
           std::abs(a.blue() - b.blue()) < 40;
}

// The stage with a real office behind its slide show; the empty pane is grey.
struct Stage : SlideStage {
    ImpressProgram* program = nullptr;
    std::unique_ptr<SlideShow> show;

    Stage() {
        window.resize(900, 700);
        frmSS->setAttribute(Qt::WA_NativeWindow);
        frmSS->setAutoFillBackground(true);
        QPalette palette = frmSS->palette();
        palette.setColor(QPalette::Window, kEmptyPane);
        frmSS->setPalette(palette);
        auto owned = std::make_unique<ImpressProgram>();
        program = owned.get();
        show = std::make_unique<SlideShow>(fields, std::move(owned));
        window.show();
    }

    // The colour the screen shows at a point of the pane given in fractions
    // of its size (the centre by default).
    QColor colourAt(double fx = 0.5, double fy = 0.5) const {
        const QPoint point = frmSS->mapToGlobal(QPoint(int(frmSS->width() * fx), int(frmSS->height() * fy)));
        const QImage image =
            QGuiApplication::primaryScreen()->grabWindow(0, point.x(), point.y(), 1, 1).toImage();
        return image.isNull() ? QColor() : image.pixelColor(0, 0);
    }

    // Waits for the pane to show `expected` (rendering is asynchronous).
    ::testing::AssertionResult shows(const QColor& expected, double fx = 0.5, double fy = 0.5) const {
        QColor seen;
        const bool ok = QTest::qWaitFor(
            [&] {
                seen = colourAt(fx, fy);
                return near(seen, expected);
            },
            10000);
        saveShot();
        if (ok)
            return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure()
               << "the pane shows " << seen.name().toStdString() << " at " << fx << "," << fy;
    }

    // With MIRABEND_SLIDESHOW_SHOTS set to a folder, every colour check
    // leaves a picture of the screen there, to see what the pane showed.
    void saveShot() const {
        static int count = 0;
        const QString folder = qEnvironmentVariable("MIRABEND_SLIDESHOW_SHOTS");
        if (!folder.isEmpty())
            QGuiApplication::primaryScreen()->grabWindow(0).save(
                QStringLiteral("%1/shot-%2.png").arg(folder).arg(++count, 3, 10, QLatin1Char('0')));
    }

    bool open(const QString& path) {
        QSignalSpy finished(show.get(), &SlideShow::finished);
        prompts.answerFile(path);
        show->openSlides();
        if (finished.isEmpty() && !finished.wait(kOpenWaitMs))
            return false;
        return finished[0][0].toBool();
    }
};

class ImpressShowTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        s_stage = new Stage;
        s_folder = new TempFolder("mirabend-slides");
        if (!QTest::qWaitForWindowExposed(&s_stage->window)) {
            s_setupError = "the stage window was never shown";
            return;
        }
        QSignalSpy prepared(s_stage->program, &PresentationProgram::prepared);
        s_stage->program->prepare();
        if (!prepared.wait(kOpenWaitMs) || prepared[0][0].value<ShowFailure>()) {
            s_setupError = "the office did not start";
            return;
        }
        s_officePid = s_stage->program->office().pid();
        const QString fodp = QStringLiteral(MIRABEND_SLIDESHOW_TEST_DATA "/ThreeColours.fodp");
        // A busy machine can make a freshly started office refuse the first
        // load; it takes the next one.
        bool saved = false;
        for (int attempt = 0; attempt < 3 && !saved; ++attempt) {
            if (attempt > 0)
                QTest::qWait(1000);
            s_setupError.clear();
            saved = saveAsPowerPoint(s_stage->program->office().connectUrl(), fodp,
                                     QString::fromStdString(s_folder->path()), QStringLiteral("colours"),
                                     s_decks, s_setupError);
        }
        if (!saved)
            return;
        s_ready = true;
    }

    static void TearDownTestSuite() {
        const qint64 pid = s_stage->program->office().pid();
        s_stage->show->shutdown();
        // Whatever office is left ends by its process id.
        if (pid > 0 && kill(static_cast<pid_t>(pid), 0) == 0)
            kill(static_cast<pid_t>(pid), SIGKILL);
        delete s_stage;
        delete s_folder;
        s_stage = nullptr;
        s_folder = nullptr;
    }

    void SetUp() override {
        ASSERT_TRUE(s_ready) << s_setupError;
        stage().prompts.messages.clear();
        stage().frmSS->setGeometry(0, 0, 580, 435);
    }

    static Stage& stage() { return *s_stage; }

    void expectSlide(const char* key, int slide, const QColor& colour) {
        Stage& s = stage();
        s.Text3->clear();
        s.show->navigate(QString::fromLatin1(key));
        EXPECT_EQ(s.slideNow_txt->text(), QString::number(slide)) << key;
        EXPECT_EQ(s.Text3->text(), QString::number(slide)) << key;
        EXPECT_EQ(s.slide_txt->text(), "3") << key;
        EXPECT_TRUE(s.shows(colour)) << key;
    }

    static inline Stage* s_stage = nullptr;
    static inline TempFolder* s_folder = nullptr;
    static inline DeckFiles s_decks;
    static inline bool s_ready = false;
    static inline std::string s_setupError;
    static inline qint64 s_officePid = 0;
};

TEST_F(ImpressShowTest, EachFormatShowsInThePaneAndNavigates) {
    Stage& s = stage();
    QSet<qint64> offices{s_officePid};
    for (const QString& deck : {s_decks.pptx, s_decks.ppt, s_decks.pps}) {
        SCOPED_TRACE(deck.toStdString());
        ASSERT_TRUE(s.open(deck));
        offices.insert(s.program->office().pid());
        EXPECT_EQ(s.window.windowTitle(), "Mirabend 1.0 " + QFileInfo(deck).fileName());
        EXPECT_EQ(s.Text1->text(), deck);
        EXPECT_EQ(s.ppt_txt->text(), "ppt");
        EXPECT_EQ(s.slide_txt->text(), "3");
        EXPECT_EQ(s.slideNow_txt->text(), "1");
        EXPECT_TRUE(s.shows(kRed));
        // Near the corners too: no menu, toolbar, sidebar or status bar.
        for (const auto& [fx, fy] : {std::pair{0.04, 0.04}, {0.96, 0.04}, {0.04, 0.96}, {0.96, 0.96}}) {
            EXPECT_TRUE(s.shows(kRed, fx, fy));
        }

        EXPECT_EQ(s.show->slideTitle(), "") << "the colour slides have no title";
        expectSlide("next", 2, kGreen);
        expectSlide("next", 3, kBlue);
        expectSlide("next", 3, kBlue); // never the office's black end screen
        expectSlide("previous", 2, kGreen);
        expectSlide("first", 1, kRed);
        expectSlide("last", 3, kBlue);
    }
    EXPECT_TRUE(s.prompts.messages.isEmpty());
    // One office serves every open; a loaded machine now and then sees it end
    // between shows and the next open start a new one, never one per open.
    EXPECT_LE(offices.size(), 2);

    // A cancelled dialog leaves the running show alone.
    const QString caption = s.window.windowTitle();
    s.prompts.answerFile(QString());
    s.show->openSlides();
    EXPECT_EQ(s.window.windowTitle(), caption);
    EXPECT_EQ(s.ppt_txt->text(), "ppt");
    EXPECT_EQ(s.slideNow_txt->text(), "3");

    // The end of the show leaves the pane cleanly empty.
    s.show->navigate(QStringLiteral("exit"));
    EXPECT_TRUE(s.shows(kEmptyPane));
    EXPECT_EQ(s.Text3->text(), "0");
    EXPECT_EQ(s.slideNow_txt->text(), "0");
    EXPECT_EQ(s.slide_txt->text(), "0");
}

TEST_F(ImpressShowTest, ShowFollowsThePaneThroughModesAndRotations) {
    Stage& s = stage();
    ASSERT_TRUE(s.open(s_decks.pptx));
    s.show->navigate(QStringLiteral("next"));
    ASSERT_TRUE(s.shows(kGreen));

    struct Place {
        const char* what;
        QRect rect;
        bool rotation;
    };
    const Place places[] = {
        {"side mode", QRect(10, 20, 625, 469), false},
        {"single mode", QRect(0, 0, 580, 435), false},
        {"rotation: the large place", QRect(200, 144, 583, 443), true},
        {"rotation: the camera's place", QRect(735, 20, 145, 109), true},
    };
    for (const Place& place : places) {
        s.frmSS->setGeometry(place.rect);
        if (place.rotation)
            s.show->PresentSize();
        else
            s.show->OpenSlidesResize();
        EXPECT_TRUE(s.shows(kGreen)) << place.what;
        EXPECT_EQ(s.slideNow_txt->text(), "2") << place.what;
    }
    // Moved in the office itself (a key pressed in the pane reaches the
    // office, not us): the fields follow within a poll.
    ASSERT_FALSE(s.program->go(SlideMove::Next));
    EXPECT_TRUE(QTest::qWaitFor([&] { return s.slideNow_txt->text() == QLatin1String("3"); }, 10000));
}

TEST_F(ImpressShowTest, CorruptOrForeignFilesGiveTheMessageAndAnEmptyPane) {
    Stage& s = stage();
    const auto write = [](const char* name, const QByteArray& bytes) {
        QFile file(QString::fromStdString(s_folder->file(name)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        return file.fileName();
    };
    QByteArray junk("\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1", 8); // an OLE header with nothing sane behind it
    for (int i = 0; i < 64 * 1024; ++i)
        junk += static_cast<char>((i * 7919) % 251);
    const QString corrupt = write("corrupt.ppt", junk);
    const QString letter = write("letter.pptx", "Dear reader,\nthis is no presentation.\n");

    for (const QString& path : {corrupt, letter}) {
        SCOPED_TRACE(path.toStdString());
        s.prompts.messages.clear();
        ASSERT_TRUE(s.open(s_decks.pptx));
        EXPECT_FALSE(s.open(path));
        EXPECT_TRUE(s.failedOnce());
        EXPECT_TRUE(s.shows(kEmptyPane));
    }
    // The next presentation opens (the office may have been started anew if
    // the junk brought it down).
    EXPECT_TRUE(s.open(s_decks.pptx));
}

// Last: it replaces the suite's office.
TEST_F(ImpressShowTest, OfficeDyingMidShowIsReportedAndTheNextOpenStartsAFreshOne) {
    Stage& s = stage();
    ASSERT_TRUE(s.open(s_decks.pptx));
    QSignalSpy finished(s.show.get(), &SlideShow::finished);
    const qint64 pid = s.program->office().pid();
    ASSERT_EQ(kill(static_cast<pid_t>(pid), SIGKILL), 0);
    ASSERT_TRUE(finished.wait(10000));
    EXPECT_FALSE(finished[0][0].toBool());
    EXPECT_TRUE(s.failedOnce());
    EXPECT_TRUE(s.shows(kEmptyPane));

    s.show->navigate(QStringLiteral("next")); // nothing to move, nothing breaks
    s.show->PresentSize();

    ASSERT_TRUE(s.open(s_decks.pps));
    EXPECT_NE(s.program->office().pid(), pid);
    EXPECT_EQ(s.ppt_txt->text(), "ppt");
    EXPECT_TRUE(s.shows(kRed));
}

} // namespace
} // namespace mirabend::test
