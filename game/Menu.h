#pragma once
// The title menu: built but never entered (no runlevel leads to it); kept in the build as it is.

class Drawable;

class Menu {
public:
    Drawable* title;
    Drawable* cursor;
    Drawable* item1;
    Drawable* item2;
    Drawable* item3;
    Drawable* item4;
    Drawable* item5;

    // Leaves the pointers as they are.
    Menu();
    // Deletes the five items; the title and the cursor are left alone.
    ~Menu();
    Menu(const Menu&) = delete;
    Menu& operator=(const Menu&) = delete;

    // Places the nodes and fades the screen in from white.
    void init();
    // Does nothing.
    void end();
    // The cursor follows the mouse and the last item pulses.
    void update();
};
