#pragma once

#include "GUI/FileDialogs.h"
#include "GUI/Prompts.h"
#include "base/text.h"

#include <deque>
#include <ostream>
#include <string>
#include <vector>

namespace pulsara::test {

// Answers the program's questions from a script, and keeps what was asked; installed for its
// lifetime. An unscripted question is answered with Cancel (or No where there is no Cancel).
class ScriptedPrompts final : public Prompts {
public:
    struct Question {
        std::u16string text, caption;
        PromptButtons buttons;
        bool operator==(const Question&) const = default;
        friend void PrintTo(const Question& q, std::ostream* out) { *out << toUtf8(q.caption) << ": " << toUtf8(q.text) << " " << int(q.buttons); }
    };
    using Questions = std::vector<Question>;

    explicit ScriptedPrompts(std::deque<PromptAnswer> answers = {}) : answers_(std::move(answers)) { previous_ = setPrompts(this); }
    ~ScriptedPrompts() override { setPrompts(previous_); }
    ScriptedPrompts(const ScriptedPrompts&) = delete;
    ScriptedPrompts& operator=(const ScriptedPrompts&) = delete;

    PromptAnswer ask(std::u16string_view text, std::u16string_view caption, PromptButtons buttons) override
    {
        asked.push_back({ std::u16string(text), std::u16string(caption), buttons });
        if (answers_.empty())
            return buttons == PromptButtons::YesNo ? PromptAnswer::No : PromptAnswer::Cancel;
        PromptAnswer answer = answers_.front();
        answers_.pop_front();
        return answer;
    }

    Questions asked;
    std::vector<std::u16string> captions() const { std::vector<std::u16string> all; for (auto& q : asked) all.push_back(q.caption); return all; }

private:
    std::deque<PromptAnswer> answers_;
    Prompts* previous_ = nullptr;
};

// Answers every file dialog with `answer`, or cancels it when that is empty, and keeps where the
// last one started and its filter; installed for its lifetime.
struct ScriptedFileDialogs {
    explicit ScriptedFileDialogs(std::u16string answer = {})
    {
        setFileDialogHook([this, answer](FileDialogKind, FilePath& path) {
            started = std::u16string(path.view());
            filter = path.filter;
            if (!answer.empty())
                path.assign(answer);
            return answer.empty() ? 0 : 1;
        });
    }
    ~ScriptedFileDialogs() { setFileDialogHook({}); }
    ScriptedFileDialogs(const ScriptedFileDialogs&) = delete;
    ScriptedFileDialogs& operator=(const ScriptedFileDialogs&) = delete;
    std::u16string started;
    const char16_t* filter = nullptr;
};

} // namespace pulsara::test
