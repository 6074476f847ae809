#pragma once
// The top-ten table over the intro screen: H shows it, read from the scores file then, and H
// hides it again. The intro's own texts stay as they are under it.

#include <string>

class ScoreFile;
class ScoreTableView;

class IntroScores {
public:
    // Top of the table's heading, in screen pixels: the panel sits about the screen's middle.
    static constexpr float TABLE_TOP = 225.0f;

    // Scores read from the file at `scoresPath`; "" shows an empty table.
    explicit IntroScores(const std::string& scoresPath);
    ~IntroScores();
    IntroScores(const IntroScores&) = delete;
    IntroScores& operator=(const IntroScores&) = delete;

    // Shows the table when it is hidden, hides it when it shows.
    void toggle();
    // Hides the table (the intro ends).
    void hide();
    // The table over the frame drawn so far, while it shows.
    void draw();
    bool showing() const { return view != nullptr; }

private:
    ScoreFile* file;
    ScoreTableView* view;
};
