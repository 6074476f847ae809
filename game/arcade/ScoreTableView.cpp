#include "game/arcade/ScoreTableView.h"

#include <cstdio>
#include <ctime>

#include "engine/Orvel.h"
#include "game/Resources.h"
#include "scene/DirectScene2D.h"
#include "scene/Fader.h"
#include "scene/Text.h"

using orvel::Orvel;
using orvel::vec3;
using orvel::vec4;

const vec4 ScoreTableView::ROW_COLOR(1.0f, 1.0f, 1.0f, 1.0f);
const vec4 ScoreTableView::MARKED_COLOR(1.0f, 0.85f, 0.2f, 1.0f);
const vec4 ScoreTableView::HEADING_COLOR(0.6f, 0.75f, 1.0f, 1.0f);

namespace {

// Every line has the same number of characters, so that the columns of the fixed-width font line
// up under a left edge shared by all.
const char* const ROW_FORMAT = "%2d  %-12s  %9u  %4u  %-10s";

// A line of `sample`'s length with its top-left corner at (left, y). The hot spot is taken from the
// size, so it is set with a line of the full length, which every later text of the line has too.
Text* lineText(const std::string& sample, float left, float y) {
    Text* text = new Text(Resources::font_medium, "");
    text->fontSize = ScoreTableView::FONT_SIZE;
    text->setText(sample.c_str());
    text->setHotSpot(TopLeft);
    text->position = vec3(left, y, 0.0f);
    return text;
}

} // namespace

std::string ScoreTableView::headingLine() {
    char line[64];
    snprintf(line, sizeof line, "%2s  %-12s  %9s  %4s  %-10s", "#", "Name", "Score", "Wave", "Date");
    return line;
}

std::string ScoreTableView::rowLine(int rank, const ScoreEntry& entry, const std::string& name) {
    char date[16] = "";
    const time_t when = (time_t)entry.when;
    struct tm day;
    if (localtime_r(&when, &day)) strftime(date, sizeof date, "%Y-%m-%d", &day);
    char line[96];
    snprintf(line, sizeof line, ROW_FORMAT, rank + 1, name.c_str(), (unsigned)entry.score, (unsigned)entry.wave,
             date);
    return line;
}

ScoreTableView::ScoreTableView(float top) : root(new DirectScene2D(-1, -1)), heading(nullptr), rows() {
    root->debugDraw = false;
    const std::string sample = headingLine();
    heading = lineText(sample, 0.0f, top);
    heading->color = HEADING_COLOR;
    const float width = heading->size.x;
    const float left = (float)(int)(0.5f * ((float)Orvel::getScreenWidth() - width));
    heading->position.x = left;
    root->add(heading);
    for (unsigned i = 0; i < ScoreTable::SIZE; ++i) {
        rows[i] = lineText(sample, left, top + ROW_STEP * (float)(i + 1) + ROW_STEP * 0.25f);
        rows[i]->setText("");
        root->add(rows[i]);
    }
    panelLeft = left - PANEL_MARGIN;
    panelTop = top - PANEL_MARGIN;
    panelRight = left + width + PANEL_MARGIN;
    panelBottom = top + ROW_STEP * ((float)ScoreTable::SIZE + 1.25f) + PANEL_MARGIN;
}

ScoreTableView::~ScoreTableView() {
    root->clear();
    delete heading;
    for (Text* row : rows) delete row;
    delete root;
}

void ScoreTableView::show(const ScoreTable& table, int marked, const char* markedName) {
    const std::vector<ScoreEntry>& entries = table.entries();
    for (unsigned i = 0; i < ScoreTable::SIZE; ++i) {
        Text* row = rows[i];
        const bool isMarked = (int)i == marked;
        row->color = isMarked ? MARKED_COLOR : ROW_COLOR;
        if (i >= entries.size()) {
            row->setText("");
            continue;
        }
        const std::string name = isMarked && markedName ? markedName : entries[i].name;
        row->setText(rowLine((int)i, entries[i], name).c_str());
    }
}

void ScoreTableView::draw() {
    Fader::fillRect(vec4(0.0f, 0.0f, 0.0f, 1.0f), PANEL_OPACITY, panelLeft, panelTop, panelRight, panelBottom);
    root->draw();
}
