#pragma once

#include <string>

namespace DatabaseService {

/// A card of things to do: a row of the table of the same name in `main.dat`. Text is UTF-8.
struct T_WaitHandleCardItem {
    int key = 0;
    std::string value;
};

/// A card of the notepad: a row of the table of the same name in `main.dat`. Text is UTF-8.
struct T_NotepadCard {
    int key = 0;
    std::string value;
};

} // namespace DatabaseService
