#pragma once

#include "GUI/editors/SongChange.h"

#include <QUndoCommand>

#include <vector>

namespace pulsara {

class SongEdits;

// One undo step: the changes of one gesture, undone in reverse order. The changes are already
// in the song when the step is pushed, so its first redo does nothing.
class SongEditCommand final : public QUndoCommand {
public:
    SongEditCommand(SongEdits&, const QString& name);

    // Adds a change, folding it into an earlier one of the same thing.
    void add(SongChange);
    bool isEmpty() const;

    void undo() override;
    void redo() override;

private:
    SongEdits& edits_;
    std::vector<SongChange> changes_;
    bool applied_ = true;
};

} // namespace pulsara
