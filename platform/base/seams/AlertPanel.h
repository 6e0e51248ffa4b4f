// The alert seam: a modal message with up to three buttons. How it looks is the program's choice.
// Main thread only.
#pragma once

#include <functional>
#include <string>

class AlertPanel
{
public:
    struct Alert {
        std::string title = {};
        std::string message = {};
        std::string path = {}; // what "%1" in the message stands for
        std::string defaultButton = {};
        std::string alternateButton = {}; // an empty title: no such button
        std::string otherButton = {};
    };
    enum Answer : int { answerOther = -1, answerAlternate = 0, answerDefault = 1 };
    using Presenter = std::function<int(const Alert&)>;

    static void setPresenter(Presenter presenter);

    [[nodiscard]] static std::string text(const Alert& alert); // the message with the path in it

    // The pressed button's Answer; without a presenter nobody is asked and the default is taken.
    static int runAlertPanel(const Alert& alert);

private:
    static Presenter& _presenter();
};
