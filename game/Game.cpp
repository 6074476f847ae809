#include "game/Game.h"

Game::Game() {}

Game::~Game() {}

void Game::init() {}

void Game::update() {}
