#pragma once

#include "FakeManager.h"
#include "FixedVariables.h"
#include "ProjectTest.h"

#include <surrogatemodel/SurrogateModelQueryToTable.h>

#include <vtkCallbackCommand.h>
#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkObjectFactory.h>
#include <vtkOutputWindow.h>
#include <vtkTable.h>

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

/** Takes the place of VTK's output window while it lives. */
class RecordingOutputWindow
{
public:
    RecordingOutputWindow() : before(vtkOutputWindow::GetInstance())
    {
        vtkOutputWindow::SetInstance(window);
    }
    ~RecordingOutputWindow() { vtkOutputWindow::SetInstance(before); }

    RecordingOutputWindow(const RecordingOutputWindow&) = delete;
    RecordingOutputWindow& operator=(const RecordingOutputWindow&) = delete;

    const std::vector<std::string>& errors() const { return window->errors; }
    const std::string& everything() const { return window->everything; }

private:
    class Window : public vtkOutputWindow
    {
    public:
        static Window* New() { VTK_STANDARD_NEW_BODY(Window); }
        vtkTypeMacro(Window, vtkOutputWindow)

        void DisplayText(const char* text) override { everything += text; }
        void DisplayErrorText(const char* text) override
        {
            errors.emplace_back(text);
            everything += text;
        }

        std::vector<std::string> errors;
        std::string everything;
    };

    vtkSmartPointer<vtkOutputWindow> before;
    vtkNew<Window> window;
};

/** Counts the events of one kind of a VTK object, with their texts, and runs `onEvent`. */
class EventRecorder
{
public:
    EventRecorder(vtkObject* object, unsigned long event)
    {
        command->SetClientData(this);
        command->SetCallback([](vtkObject*, unsigned long kind, void* client, void* text) {
            auto* const recorder = static_cast<EventRecorder*>(client);
            recorder->texts.emplace_back(
                kind == vtkCommand::ErrorEvent ? static_cast<const char*>(text) : "");
            if (recorder->onEvent) {
                recorder->onEvent();
            }
        });
        object->AddObserver(event, command);
    }
    ~EventRecorder() { command->SetCallback(nullptr); }

    EventRecorder(const EventRecorder&) = delete;
    EventRecorder& operator=(const EventRecorder&) = delete;

    std::size_t count() const { return texts.size(); }

    std::vector<std::string> texts;
    std::function<void()> onEvent;

private:
    vtkNew<vtkCallbackCommand> command;
};

/** A filter over the inputs x1 in {1, 2}, x2 in {10, 20} and the output y1 at offset 0. */
class QueryTest : public ProjectTest
{
protected:
    QueryTest() : x1(addInput("x1")), x2(addInput("x2")), y1(addOutput("y1"))
    {
        manager->independents->set({x1, x2});
        manager->offsets["y1"] = 0;
        variables->inputs = {{x1, {1, 2}}, {x2, {10, 20}}};
        variables->dependents = {y1};
    }

    VarPtr addOutputAt(const std::string& name, std::size_t offset) const
    {
        const VarPtr variable = addOutput(name);
        manager->offsets[name] = offset;
        variables->dependents.insert(variable);
        return variable;
    }

    void update() const { filter->Update(); }

    vtkTable* output() const { return filter->GetOutput(); }

    std::vector<std::string> columnNames() const
    {
        std::vector<std::string> names;
        for (vtkIdType column = 0; column < output()->GetNumberOfColumns(); ++column) {
            names.emplace_back(output()->GetColumnName(column));
        }
        return names;
    }

    std::vector<double> column(const std::string& name) const
    {
        auto* const array =
            vtkArrayDownCast<vtkDoubleArray>(output()->GetColumnByName(name.c_str()));
        return {array->GetPointer(0), array->GetPointer(0) + array->GetNumberOfValues()};
    }

    std::size_t executions() const { return manager->offsetRequests.size(); }

    VarPtr x1;
    VarPtr x2;
    VarPtr y1;
    boost::shared_ptr<FakeManager> manager = boost::make_shared<FakeManager>();
    boost::shared_ptr<FixedVariables> variables = boost::make_shared<FixedVariables>();
    vtkSmartPointer<SurrogateModelQueryToTable> filter =
        SurrogateModelQueryToTable::New(manager, variables);
};
