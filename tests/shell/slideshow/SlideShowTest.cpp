// The slide show logic against a fake presentation program: what the open
// dialog asks, what the main window's fields say after opens, failures and
// navigation, and the embedding fallback for a show at top level.
#include "shell/slideshow/SlideShow.h"

#include "FakePresentationProgram.h"
#include "SlideStage.h"
#include "shell/slideshow/NoPresentationProgram.h"
#include "support/ChildProcess.h"
#include "util/WindowStyle.h"
#include "util/WindowSystem.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

namespace mirabend::test {
namespace {

// Records the calls the embedding fallback makes on foreign windows.
class RecordingWindowSystem final : public WindowSystem {
public:
    NativeHandle showWindow = 0; // the window of class "screenClass", if any
    QStringList searches;
    QList<std::pair<NativeHandle, NativeHandle>> parents;
    QList<std::uint32_t> styles;
    QList<QRect> geometries;
    int shows = 0;

    NativeHandle findWindowByClass(const QString& className) override {
        searches << className;
        return className == QLatin1String("screenClass") ? showWindow : 0;
    }
    bool setParent(NativeHandle child, NativeHandle parent) override {
        parents.append({child, parent});
        return true;
    }
    bool setWindowText(NativeHandle, const QString&) override { return true; }
    bool applyStyle(NativeHandle, std::uint32_t style) override {
        styles << style;
        return true;
    }
    bool showNormal(NativeHandle) override {
        ++shows;
        return true;
    }
    bool moveResize(NativeHandle, int x, int y, int width, int height) override {
        geometries << QRect(x, y, width, height);
        return true;
    }
    bool setTopMost(NativeHandle, bool) override { return true; }
    bool touched() const { return !parents.isEmpty() || !styles.isEmpty() || !geometries.isEmpty(); }
};

class SlideShowTest : public ::testing::Test, protected SlideStage {
protected:
    void SetUp() override {
        auto owned = std::make_unique<FakePresentationProgram>();
        program = owned.get();
        show = std::make_unique<SlideShow>(fields, std::move(owned), &windows);
        deck = touch("talk.pptx");
    }

    QString touch(const char* name) {
        QFile file(QString::fromStdString(folder.file(name)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        return file.fileName();
    }
    QString deckPath() const { return deck; }

    // Opens the deck through the dialog with the program already running.
    void openRunning() {
        program->ready = true;
        prompts.answerFile(deckPath());
        show->openSlides();
        ASSERT_EQ(ppt_txt->text(), "ppt");
    }

    TempFolder folder;
    QString deck;
    RecordingWindowSystem windows;
    FakePresentationProgram* program = nullptr;
    std::unique_ptr<SlideShow> show;
};

TEST_F(SlideShowTest, FirstOpenAsksWaitsForTheProgramThenShowsInThePaneAndLaterOpensReuseIt) {
    QSignalSpy finished(show.get(), &SlideShow::finished);
    prompts.answerFile(deckPath());
    show->openSlides();
    ASSERT_EQ(prompts.openRequests.size(), 1);
    const FileRequest& request = prompts.openRequests[0];
    EXPECT_EQ(request.title, "Open PowerPoint File");
    EXPECT_EQ(request.initialFileName, "*.ppt; *.pptx; *.pps");
    EXPECT_EQ(request.defaultExtension, "ppt; ppx, pps");
    EXPECT_EQ(request.filter, "PowerPoint 2003 (*.ppt)|*.ppt|PowerPoint 2007/2010 (*.pptx)|*.pptx|"
                              "PowerPointShow (*.pps)|*.pps");
    EXPECT_EQ(request.filterIndex, 1);
    // The caption and path come at once; the show when the program is up.
    EXPECT_EQ(window.windowTitle(), "Mirabend 1.0 talk.pptx");
    EXPECT_EQ(Text1->text(), deckPath());
    EXPECT_EQ(ppt_txt->text(), "no");
    EXPECT_EQ(program->prepareCalls, 1);
    EXPECT_TRUE(program->openedPaths.isEmpty());
    EXPECT_TRUE(show->isOpening());

    program->finishPrepare();
    ASSERT_EQ(program->openedPaths, QStringList{deckPath()});
    EXPECT_EQ(program->lastPane, static_cast<NativeHandle>(frmSS->winId()));
    EXPECT_EQ(program->sizes.value(0), QSize(580, 435));
    EXPECT_EQ(ppt_txt->text(), "ppt");
    EXPECT_EQ(slideNow_txt->text(), "1");
    EXPECT_EQ(slide_txt->text(), "3");
    ASSERT_EQ(finished.size(), 1);
    EXPECT_TRUE(finished[0][0].toBool());
    EXPECT_TRUE(prompts.messages.isEmpty());
    EXPECT_FALSE(windows.touched()); // an embedded show needs no window surgery

    // Cancelled, or the dialog's own pattern back: nothing changes.
    prompts.answerFile(QString());
    prompts.answerFile(QStringLiteral("*.ppt; *.pptx; *.pps"));
    show->openSlides();
    show->openSlides();
    EXPECT_EQ(window.windowTitle(), "Mirabend 1.0 talk.pptx");
    EXPECT_EQ(Text1->text(), deckPath());
    EXPECT_EQ(program->openedPaths.size(), 1);
    // A second open keeps the running program.
    const QString other = touch("Other Deck.ppt");
    prompts.answerFile(other);
    show->openSlides();
    EXPECT_EQ(window.windowTitle(), "Mirabend 1.0 Other Deck.ppt");
    EXPECT_EQ(Text1->text(), other);
    EXPECT_EQ(program->openedPaths.size(), 2);
    EXPECT_EQ(program->prepareCalls, 1);
    EXPECT_TRUE(prompts.messages.isEmpty());
}

TEST_F(SlideShowTest, OpeningAgainWhileTheProgramStartsShowsOnlyTheLastChoice) {
    const QString other = touch("later.ppt");
    show->openSlidesStart(); // no welcome deck here: reported, program untouched
    prompts.messages.clear();
    prompts.answerFile(deckPath());
    prompts.answerFile(other);
    show->openSlides();
    show->openSlides();
    EXPECT_EQ(program->prepareCalls, 1);
    program->finishPrepare();
    EXPECT_EQ(program->openedPaths, QStringList{other});
    EXPECT_EQ(window.windowTitle(), "Mirabend 1.0 later.ppt");
    EXPECT_FALSE(show->isOpening());
    EXPECT_TRUE(prompts.messages.isEmpty());

    // Shutting down ends the program and drops a waiting open.
    program->ready = false;
    prompts.answerFile(deckPath());
    show->openSlides();
    show->shutdown();
    EXPECT_EQ(program->shutdownCalls, 1);
    program->finishPrepare();
    EXPECT_EQ(program->openedPaths.size(), 1);
}

TEST_F(SlideShowTest, EveryFailureShowsTheMessageAndLeavesNoPresentation) {
    QSignalSpy finished(show.get(), &SlideShow::finished);
    // The program does not start (missing, or automation refused).
    prompts.answerFile(deckPath());
    show->openSlides();
    program->finishPrepare({ShowError::StartFailed, "refused"});
    EXPECT_TRUE(failedOnce());
    EXPECT_EQ(ppt_txt->text(), "no");
    EXPECT_TRUE(program->openedPaths.isEmpty());
    ASSERT_EQ(finished.size(), 1);
    EXPECT_FALSE(finished[0][0].toBool());

    // The file is no presentation: a running show before it is gone too.
    prompts.messages.clear();
    openRunning();
    program->startFailure = {ShowError::NotAPresentation, "a letter"};
    prompts.answerFile(deckPath());
    show->openSlides();
    EXPECT_TRUE(failedOnce());
    EXPECT_EQ(ppt_txt->text(), "no");
    show->navigate(QStringLiteral("next"));
    EXPECT_TRUE(program->moves.isEmpty());
}

TEST_F(SlideShowTest, ProgramDyingUnderAnOpenGetsOneMoreTry) {
    openRunning();
    // Dies under the next open: a fresh program shows it.
    program->startFailure = {ShowError::ProgramLost, "gone"};
    prompts.answerFile(deckPath());
    show->openSlides();
    EXPECT_EQ(program->openedPaths.size(), 2);
    EXPECT_EQ(program->prepareCalls, 1);
    EXPECT_EQ(ppt_txt->text(), "ppt"); // not reported yet
    EXPECT_TRUE(prompts.messages.isEmpty());
    program->startFailure = {};
    program->finishPrepare();
    EXPECT_EQ(program->openedPaths.size(), 3);
    EXPECT_EQ(ppt_txt->text(), "ppt");
    EXPECT_TRUE(prompts.messages.isEmpty());

    // Dying twice in a row is a failure.
    program->startFailure = {ShowError::ProgramLost, "gone"};
    prompts.answerFile(deckPath());
    show->openSlides();
    program->finishPrepare();
    EXPECT_TRUE(failedOnce());
    EXPECT_EQ(program->prepareCalls, 2);
    EXPECT_EQ(ppt_txt->text(), "no");
}

TEST_F(SlideShowTest, WelcomeComesFromTheDataFolderAndMissingFilesNeverStartTheProgram) {
    EXPECT_FALSE(show->openFile(QString::fromStdString(folder.file("gone.ppt"))));
    EXPECT_EQ(Text1->text(), "");
    EXPECT_TRUE(prompts.messages.isEmpty());

    qputenv("MIRABEND_DATA_DIR", QByteArray::fromStdString(folder.path()));
    show->openSlidesStart(); // missing from every data folder
    EXPECT_EQ(window.windowTitle(), "Mirabend 1.0 Welcome.ppt");
    EXPECT_TRUE(failedOnce());
    EXPECT_EQ(program->prepareCalls, 0);

    touch("Welcome.ppt");
    program->ready = true;
    show->openSlidesStart();
    qunsetenv("MIRABEND_DATA_DIR");
    ASSERT_EQ(program->openedPaths.size(), 1);
    EXPECT_TRUE(program->openedPaths[0].endsWith(QLatin1String("/Welcome.ppt")));
    EXPECT_EQ(ppt_txt->text(), "ppt");
}

TEST_F(SlideShowTest, NavigationMovesThenWritesTheSlideFields) {
    program->titles = {QStringLiteral("Welcome")};
    openRunning();
    EXPECT_EQ(show->slideTitle(), "Welcome");
    const std::vector<std::pair<QString, QString>> steps{{"next", "2"},     {"next", "3"},  {"next", "3"},
                                                         {"previous", "2"}, {"first", "1"}, {"last", "3"}};
    for (const auto& [key, slide] : steps) {
        Text3->clear();
        show->navigate(key);
        EXPECT_EQ(slideNow_txt->text(), slide) << key.toStdString();
        EXPECT_EQ(Text3->text(), slide) << key.toStdString();
        EXPECT_EQ(slide_txt->text(), "3");
    }
    EXPECT_EQ(program->moves, (QList<SlideMove>{SlideMove::Next, SlideMove::Next, SlideMove::Next,
                                                SlideMove::Previous, SlideMove::First, SlideMove::Last}));

    show->navigate(QStringLiteral("rotate1")); // not a navigation key
    EXPECT_EQ(program->moves.size(), 6);

    // "End Show" leaves no slide behind in the fields.
    show->navigate(QStringLiteral("exit"));
    EXPECT_EQ(program->endCalls, 1);
    EXPECT_EQ(Text3->text(), "0");
    EXPECT_EQ(slideNow_txt->text(), "0");
    EXPECT_EQ(slide_txt->text(), "0");
    show->navigate(QStringLiteral("next")); // nothing runs any more
    EXPECT_EQ(program->moves.size(), 6);
    EXPECT_EQ(ppt_txt->text(), "ppt");
}

TEST_F(SlideShowTest, ProgramEndingMidShowIsReportedAndTheNextOpenStartsAnew) {
    openRunning();
    program->die();
    EXPECT_TRUE(failedOnce());
    EXPECT_EQ(slideNow_txt->text() + slide_txt->text(), "00");
    show->navigate(QStringLiteral("next"));
    EXPECT_TRUE(program->moves.isEmpty());

    prompts.answerFile(deckPath());
    show->openSlides();
    EXPECT_EQ(program->prepareCalls, 1);
    program->finishPrepare();
    EXPECT_EQ(ppt_txt->text(), "ppt");

    // A program that fails during a move is the same story.
    prompts.messages.clear();
    program->goFailure = {ShowError::ProgramLost, "gone"};
    show->navigate(QStringLiteral("last"));
    EXPECT_TRUE(failedOnce());
    EXPECT_EQ(ppt_txt->text(), "no");

    // An idle program ending is nobody's business.
    prompts.messages.clear();
    program->die();
    EXPECT_TRUE(prompts.messages.isEmpty());
}

TEST_F(SlideShowTest, RefitsGiveTheShowThePanesNewSize) {
    show->OpenSlidesResize();
    show->PresentSize();
    EXPECT_TRUE(program->sizes.isEmpty()); // no show: nothing to fit
    EXPECT_FALSE(windows.touched());

    openRunning();
    show->navigate(QStringLiteral("next"));
    frmSS->setGeometry(10, 20, 625, 468); // side by side with the camera
    show->OpenSlidesResize();
    frmSS->setGeometry(200, 144, 583, 443); // the rotation's large place
    show->PresentSize();
    EXPECT_EQ(program->sizes, (QList<QSize>{{580, 435}, {625, 468}, {583, 443}}));
    EXPECT_EQ(slideNow_txt->text(), "2"); // the show keeps its slide
}

TEST_F(SlideShowTest, ShowAtTopLevelIsEmbeddedIntoThePaneWithoutFrame) {
    program->embedded = false;
    windows.showWindow = 0x4200001;
    openRunning();
    ASSERT_EQ(windows.parents.size(), 1);
    EXPECT_EQ(windows.parents[0].first, 0x4200001u);
    EXPECT_EQ(windows.parents[0].second, static_cast<NativeHandle>(frmSS->winId()));
    ASSERT_FALSE(windows.styles.isEmpty());
    const std::uint32_t frameBits =
        (WindowStyle::CaptionBits & ~WindowStyle::ClipBits) | WindowStyle::SysMenuBit |
        WindowStyle::MinimizeBit | WindowStyle::MaximizeBit | WindowStyle::SizeBoxBit | WindowStyle::PopupBit;
    EXPECT_EQ(windows.styles.last() & frameBits, 0u);
    EXPECT_GE(windows.shows, 1);
    EXPECT_EQ(windows.geometries.last(), QRect(0, 0, 580, 435));

    frmSS->resize(145, 109);
    show->PresentSize();
    EXPECT_EQ(windows.parents.size(), 2);
    EXPECT_EQ(windows.geometries.last(), QRect(0, 0, 145, 109));
}

TEST_F(SlideShowTest, WithoutAPresentationProgramEveryOpenFailsWithTheMessage) {
    SlideShow bare(fields, std::make_unique<NoPresentationProgram>(), &windows);
    QSignalSpy finished(&bare, &SlideShow::finished);
    prompts.answerFile(deckPath());
    bare.openSlides();
    ASSERT_TRUE(finished.wait(1000));
    EXPECT_FALSE(finished[0][0].toBool());
    EXPECT_TRUE(failedOnce());
    EXPECT_EQ(ppt_txt->text(), "no");
    bare.navigate(QStringLiteral("next"));
    bare.PresentSize();
    EXPECT_EQ(slideNow_txt->text(), "");
}

} // namespace
} // namespace mirabend::test
