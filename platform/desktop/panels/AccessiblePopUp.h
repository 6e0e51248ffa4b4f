// What a screen reader finds in place of a pop-up button: a combo box with the button's name, whose
// text is the selected item.
#pragma once

class PopUpButton;

namespace AccessiblePopUp
{

// For all pop-up buttons; once is enough.
void install();

// That another item is selected.
void tellChoice(PopUpButton* button);

} // namespace AccessiblePopUp
