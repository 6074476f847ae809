#include "game/Explosions.h"

// The four sizes share one empty body until explosions move out of the actors' destroy().
static void createExplosion(const orvel::vec2&, float) {}

void createSmallExplosion(const orvel::vec2& position, float radius) { createExplosion(position, radius); }
void createMediumExplosion(const orvel::vec2& position, float radius) { createExplosion(position, radius); }
void createBigExplosion(const orvel::vec2& position, float radius) { createExplosion(position, radius); }
void createHugeExplosion(const orvel::vec2& position, float radius) { createExplosion(position, radius); }
