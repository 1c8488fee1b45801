#include "shell/TaskPaneBuilder.h"

#include "shell/CameraSettingsPanel.h"
#include "shell/ImageList.h"
#include "shell/Stage.h"
#include "shell/TitlesPanel.h"
#include "util/ExplorerBar.h"

#include <QLabel>

namespace mirabend {

namespace {

QWidget* hintPanel(const QString& text)
{
    auto* label = new QLabel(text);
    label->setWordWrap(true);
    label->setStyleSheet(QStringLiteral("color: #4a5568;"));
    return label;
}

} // namespace

TaskPanePanels TaskPaneBuilder::AddExpBar(ExplorerBar& bar, Stage& stage)
{
    TaskPanePanels panels;

    ExplorerBarGroup* record = bar.addGroup(QObject::tr("Recording"), QStringLiteral("record"));
    record->addItem(QStringLiteral(" Options"), QStringLiteral("options"), ImageList::icon(13));
    record->addItem(QStringLiteral(" Start recording"), QStringLiteral("startrec"), ImageList::icon(11));
    record->addItem(QStringLiteral(" Pause"), QStringLiteral("pause"), ImageList::icon(ImageList::kPause));
    record->addItem(QStringLiteral(" Stop"), QStringLiteral("stop"), ImageList::icon(12));
    record->addItem(QStringLiteral(" Audio recorder"), QStringLiteral("mic"), ImageList::icon(16));
    // Pausing and stopping make sense once a recording runs.
    record->item(QStringLiteral("pause"))->setEnabled(false);
    record->item(QStringLiteral("stop"))->setEnabled(false);

    ExplorerBarGroup* camera = bar.addGroup(QStringLiteral("Camera Settings"), QStringLiteral("camera"));
    panels.camera = new CameraSettingsPanel;
    camera->setPanel(panels.camera);

    ExplorerBarGroup* titles = bar.addGroup(QStringLiteral("Titles"), QStringLiteral("titles"));
    panels.titles = new TitlesPanel(stage);
    titles->setPanel(panels.titles);

    ExplorerBarGroup* slides = bar.addGroup(QStringLiteral("Slides"), QStringLiteral("powerpoint"));
    slides->addItem(QStringLiteral(" First"), QStringLiteral("first"));
    slides->addItem(QStringLiteral(" Next"), QStringLiteral("next"));
    slides->addItem(QStringLiteral(" Previous"), QStringLiteral("previous"));
    slides->addItem(QStringLiteral(" Last"), QStringLiteral("last"));
    slides->addItem(QStringLiteral(" End Show"), QStringLiteral("exit"));

    ExplorerBarGroup* notes = bar.addGroup(QStringLiteral("Notes"), QStringLiteral("text"));
    notes->setPanel(hintPanel(QObject::tr("Type on the notes board; select text to format it.")));

    ExplorerBarGroup* draw = bar.addGroup(QStringLiteral("Draw"), QStringLiteral("draw"));
    draw->setPanel(hintPanel(QObject::tr("Draw on the whiteboard with the mouse.")));

    ExplorerBarGroup* web = bar.addGroup(QStringLiteral("Web"), QStringLiteral("web"));
    web->setPanel(hintPanel(QObject::tr("Show a web page beside your slides.")));

    ExplorerBarGroup* help = bar.addGroup(QStringLiteral("About"), QStringLiteral("help"));
    help->addItem(QStringLiteral(" About"), QStringLiteral("about"));
    help->addItem(QStringLiteral(" Help"), QStringLiteral("help"));
    help->addItem(QStringLiteral(" Mirabend Online"), QStringLiteral("online"));

    ExplorerBarGroup* layout = bar.addGroup(QObject::tr("Layout"), QStringLiteral("layout"));
    layout->addItem(QStringLiteral(" Plain arrangement"), QStringLiteral("rotate0"), ImageList::icon(17));
    layout->addItem(QStringLiteral(" Camera and slides swap"), QStringLiteral("rotate1"), ImageList::icon(17));
    layout->addItem(QStringLiteral(" Slides beside the drawing"), QStringLiteral("rotate2"), ImageList::icon(17));
    layout->addItem(QStringLiteral(" Slides beside the whiteboard"), QStringLiteral("rotate3"),
                    ImageList::icon(17));
    layout->addItem(QStringLiteral(" Smaller stage"), QStringLiteral("dec"), ImageList::icon(18));
    layout->addItem(QStringLiteral(" Screen resolution"), QStringLiteral("resolution"), ImageList::icon(18));

    // Start with the bars that matter before the first recording.
    for (const char* key : {"camera", "titles", "text", "draw", "web", "layout"})
        bar.group(QLatin1String(key))->setExpanded(false);
    return panels;
}

} // namespace mirabend
