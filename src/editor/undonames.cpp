#include "editor/undonames.h"

#include <QTextDocument>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {
const auto unnamed = u"Typing"_s; // what comes of keys without anybody's command
}

UndoNames::Scope::Scope(UndoNames &names, const QString &name)
    : m_names(names)
    , m_outer(std::exchange(names.m_name, name))
{ }

UndoNames::Scope::~Scope()
{
    m_names.m_name = m_outer;
}

void UndoNames::watch(QTextDocument *document)
{
    if (m_document) {
        m_document->disconnect(this);
    }
    m_document = document;
    m_steps.clear();
    m_end = 0;
    if (document) {
        connect(document, &QTextDocument::undoCommandAdded, this, &UndoNames::noteStep);
        connect(document, &QTextDocument::contentsChanged, this,
                [this] { m_end = m_document->availableUndoSteps(); });
    }
}

// Comes before contentsChanged: m_end still says where the stack was.
void UndoNames::noteStep()
{
    const auto isGone = [this](const Step &step) {
        return step.end > m_end;
    };
    m_steps.erase(std::find_if(m_steps.begin(), m_steps.end(), isGone), m_steps.end());
    m_end = m_document->availableUndoSteps();
    m_steps.push_back({m_end, m_name.isEmpty() ? unnamed : m_name});
}

QString UndoNames::undoName() const
{
    const int end = m_document ? m_document->availableUndoSteps() : 0;
    const auto step = std::find_if(m_steps.begin(), m_steps.end(),
                                   [end](const Step &candidate) { return candidate.end >= end; });
    return end == 0 || step == m_steps.end() ? QString() : step->name;
}

QString UndoNames::redoName() const
{
    const int end = m_document ? m_document->availableUndoSteps() : 0;
    const auto step = std::find_if(m_steps.begin(), m_steps.end(),
                                   [end](const Step &candidate) { return candidate.end > end; });
    return step == m_steps.end() ? QString() : step->name;
}

} // namespace quorvane
