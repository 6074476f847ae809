#pragma once
// The top-ten table on screen: a heading and ten rows in columns (rank, name, score, wave, date)
// on a dark panel, one row marked. Drawn over whatever the frame drew so far.

#include <string>

#include "engine/Vector.h"
#include "game/scores/ScoreTable.h"

class DirectScene2D;
class Text;

class ScoreTableView {
public:
    // Height of a glyph, and the rows' spacing, in screen pixels.
    static constexpr float FONT_SIZE = 20.0f;
    static constexpr float ROW_STEP = 24.0f;
    // Room around the text inside the panel, in pixels.
    static constexpr float PANEL_MARGIN = 12.0f;
    // The panel's black, at this opacity.
    static constexpr float PANEL_OPACITY = 0.85f;
    // Colours of the rows and of the marked row.
    static const orvel::vec4 ROW_COLOR;
    static const orvel::vec4 MARKED_COLOR;
    static const orvel::vec4 HEADING_COLOR;

    // The view with its heading's top at `top` pixels, centred across the screen; empty rows.
    explicit ScoreTableView(float top);
    ~ScoreTableView();
    ScoreTableView(const ScoreTableView&) = delete;
    ScoreTableView& operator=(const ScoreTableView&) = delete;

    // Shows the entries of `table`; the row of rank `marked` (from 0; -1 for none) in the marked
    // colour, with `markedName` in place of its name when that is not null (a name being typed).
    void show(const ScoreTable& table, int marked, const char* markedName = nullptr);
    // The panel and the texts.
    void draw();

    // The heading's line.
    static std::string headingLine();
    // The line of the entry of rank `rank` (from 0) with `name` in place of its name. The date
    // is the local calendar day of entry.when.
    static std::string rowLine(int rank, const ScoreEntry& entry, const std::string& name);

    // Screen pixels the panel covers.
    float left() const { return panelLeft; }
    float top() const { return panelTop; }
    float right() const { return panelRight; }
    float bottom() const { return panelBottom; }

private:
    DirectScene2D* root;
    Text* heading;
    Text* rows[ScoreTable::SIZE];
    float panelLeft, panelTop, panelRight, panelBottom;
};
