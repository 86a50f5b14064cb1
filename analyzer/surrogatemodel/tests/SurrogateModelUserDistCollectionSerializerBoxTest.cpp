// The warnings of a program with widgets.
#include <surrogatemodel/SurrogateModelUserDistCollectionSerializer.h>

#include "CapturedErrors.h"
#include "ProjectTest.h"
#include "UserDistXml.h"

#include <mirel_serialization/tests/XmlText.h>
#include <property/Property.h>

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QTimer>

#include <functional>

namespace {

using Collection = SurrogateModelUserDistCollection;

/** What a box looked like while it was open. */
struct SeenBox
{
    std::string title;
    std::string text;
    Qt::TextFormat format;
    QMessageBox::Icon icon;
    QMessageBox::StandardButtons buttons;
    bool isModal;
    bool hasParent;
    std::string informativeText;
};

/** While one lives, message boxes are noted and closed as soon as they are open. */
class BoxCloser
{
public:
    BoxCloser()
    {
        QObject::connect(&timer, &QTimer::timeout, &timer, [this] { closeOpenBox(); });
        timer.start(0);
    }

    std::vector<SeenBox> boxes;
    std::function<void()> whileOpen;

private:
    void closeOpenBox()
    {
        auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box == nullptr) {
            return;
        }
        boxes.push_back({box->windowTitle().toStdString(), box->text().toStdString(),
                         box->textFormat(), box->icon(), box->standardButtons(), box->isModal(),
                         box->parent() != nullptr, box->informativeText().toStdString()});
        if (whileOpen) {
            whileOpen();
        }
        box->button(QMessageBox::Ok)->click();
    }

    QTimer timer;
};

class SurrogateModelUserDistCollectionSerializerBoxTest : public ProjectTest
{
protected:
    SurrogateModelUserDistCollectionSerializerBoxTest()
    {
        addInput("x");
        addInput("y");
    }

    void load(const std::string& children) const { read(serializer, userDistBlock(children)); }

    boost::shared_ptr<veska::Property<Collection>> property =
        boost::make_shared<veska::Property<Collection>>();
    SurrogateModelUserDistCollectionSerializer serializer{property};
    BoxCloser closer;
};

} // namespace

TEST_F(SurrogateModelUserDistCollectionSerializerBoxTest, ShowsAModalWarningWithOneButton)
{
    const CapturedErrors errors;

    load("<Variable Name='x' Distribution='1 - 0 : 3' Mode='Auto'/>");

    ASSERT_EQ(closer.boxes.size(), 1U);
    const SeenBox& box = closer.boxes.front();
    EXPECT_EQ(box.title, "Format Error");
    EXPECT_EQ(box.text, userDistWarning("x"));
    EXPECT_EQ(box.informativeText, "") << "the fault itself is not shown";
    EXPECT_EQ(box.icon, QMessageBox::Warning);
    EXPECT_EQ(box.buttons, QMessageBox::Ok);
    EXPECT_TRUE(box.isModal);
    EXPECT_FALSE(box.hasParent);
    EXPECT_EQ(errors.text(), "") << "warned once";
}

TEST_F(SurrogateModelUserDistCollectionSerializerBoxTest, ShowsMarkupInNamesAsItIsWritten)
{
    const std::string name = "<b>%1%</b> &amp;";
    addInput(name);

    load("<Variable Name='&lt;b>%1%&lt;/b> &amp;amp;' Distribution='abc'/>");

    ASSERT_EQ(closer.boxes.size(), 1U);
    EXPECT_EQ(closer.boxes.front().text, userDistWarning(name));
    EXPECT_EQ(closer.boxes.front().format, Qt::PlainText);
}

TEST_F(SurrogateModelUserDistCollectionSerializerBoxTest, ShowsNoBoxForValidTexts)
{
    load("<Variable Name='x' Distribution='0 - 1 : 3'/>");
    QCoreApplication::processEvents();

    EXPECT_TRUE(closer.boxes.empty());
}

// The event loop of the box lets the rest of the program run: it may close the project.
TEST_F(SurrogateModelUserDistCollectionSerializerBoxTest, ToleratesThatTheProjectIsClosedMeanwhile)
{
    closer.whileOpen = [this] {
        project.reset();
        Project::setProject(nullptr);
    };

    load("<Variable Name='x' Distribution='abc'/><Variable Name='y' Distribution='1'/>");

    EXPECT_TRUE(property->get() == Collection()) << "the project that is open now knows no y";
}

// A change made by the user while the box is open loses against the document, like one before it.
TEST_F(SurrogateModelUserDistCollectionSerializerBoxTest, SetsWhatItReadOverChangesMadeMeanwhile)
{
    closer.whileOpen = [this] { property->set(with({}, "x", Collection::UserDefined, "9")); };

    load("<Variable Name='x' Distribution='abc'/><Variable Name='y' Distribution='1'/>");

    EXPECT_TRUE(property->get() == with({}, "y", Collection::UserDefined, "1"));
}
