#pragma once

#include "GUI/Prompts.h"

#include <deque>
#include <string>
#include <vector>

namespace pulsara::test {

// Answers the program's questions from a script, and keeps what was asked; installed for its
// lifetime. An unscripted question is answered with Cancel (or No where there is no Cancel).
class ScriptedPrompts final : public Prompts {
public:
    struct Question {
        std::u16string text;
        std::u16string caption;
        PromptButtons buttons;
    };

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

    std::vector<Question> asked;

private:
    std::deque<PromptAnswer> answers_;
    Prompts* previous_ = nullptr;
};

} // namespace pulsara::test
