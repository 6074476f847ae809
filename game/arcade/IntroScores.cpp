#include "game/arcade/IntroScores.h"

#include "game/arcade/ScoreTableView.h"
#include "game/scores/ScoreFile.h"

IntroScores::IntroScores(const std::string& scoresPath)
    : file(scoresPath.empty() ? nullptr : new ScoreFile(scoresPath)), view(nullptr) {}

IntroScores::~IntroScores() {
    hide();
    delete file;
}

void IntroScores::toggle() {
    if (view) {
        hide();
        return;
    }
    view = new ScoreTableView(TABLE_TOP);
    view->show(file ? file->load() : ScoreTable(), -1);
}

void IntroScores::hide() {
    delete view;
    view = nullptr;
}

void IntroScores::draw() {
    if (view) view->draw();
}
