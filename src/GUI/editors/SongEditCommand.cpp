#include "GUI/editors/SongEditCommand.h"

#include "GUI/editors/SongEdits.h"

#include <algorithm>

namespace pulsara {

SongEditCommand::SongEditCommand(SongEdits& edits, const QString& name)
    : QUndoCommand(name)
    , edits_(edits)
{
}

void SongEditCommand::add(SongChange change)
{
    for (SongChange& earlier : changes_) {
        if (absorbChange(earlier, change))
            return;
    }
    changes_.push_back(std::move(change));
}

bool SongEditCommand::isEmpty() const
{
    return std::all_of(changes_.begin(), changes_.end(), changesNothing);
}

void SongEditCommand::undo()
{
    uint32_t scope = 0;
    for (auto change = changes_.rbegin(); change != changes_.rend(); ++change)
        scope |= applyChange(edits_.song(), *change, false);
    applied_ = false;
    edits_.applied(EditScope(scope), true);
}

void SongEditCommand::redo()
{
    if (applied_)
        return;
    uint32_t scope = 0;
    for (const SongChange& change : changes_)
        scope |= applyChange(edits_.song(), change, true);
    applied_ = true;
    edits_.applied(EditScope(scope), true);
}

} // namespace pulsara
