#pragma once

#include <string_view>

namespace pulsara {

enum class PromptButtons { Ok, YesNo, YesNoCancel };
enum class PromptAnswer { Ok, Yes, No, Cancel };

// The questions the program asks the user: message boxes in the window, a scripted answerer in
// tests. The texts, captions and button sets are the program's own and stay as they are.
class Prompts {
public:
    virtual ~Prompts() = default;
    // A top-most box brought to the foreground, owned by the main window when there is one.
    virtual PromptAnswer ask(std::u16string_view text, std::u16string_view caption, PromptButtons) = 0;
};

// The installed answerer: message boxes unless another was installed.
Prompts& prompts();
// Installs an answerer (not owned); nullptr restores the message boxes. Returns the previous one.
Prompts* setPrompts(Prompts*);

} // namespace pulsara
