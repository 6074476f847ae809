// The starfield's batching: stars go to GL 128 at a time, so 512 stars take four draw calls.
// glDrawArrays is wrapped at link time to count the calls and the vertices of each.

#include "game/Starfield.h"

#include <vector>

#include "engine/Matrix.h"
#include "engine/Orvel.h"
#include "tests/support/GameSession.h"

using testing_support::StarfieldScene;

namespace {

std::vector<GLsizei> drawnCounts;
bool counting = false;

class StarfieldBatchTest : public StarfieldScene {
protected:
    // The vertex counts of the draw calls one stars-only draw() makes.
    std::vector<GLsizei> drawCallsFor(int stars) {
        Starfield sf(stars);
        sf.skyOn = 0;
        drawnCounts.clear();
        counting = true;
        sf.draw(state);
        counting = false;
        return drawnCounts;
    }
};

} // namespace

extern "C" {
void __real_glDrawArrays(GLenum mode, GLint first, GLsizei count);
void __wrap_glDrawArrays(GLenum mode, GLint first, GLsizei count) {
    if (counting) drawnCounts.push_back(count);
    __real_glDrawArrays(mode, first, count);
}
}

TEST_F(StarfieldBatchTest, FiveHundredTwelveStarsTakeFourDrawCallsOf128Stars) {
    EXPECT_EQ(drawCallsFor(512), (std::vector<GLsizei>{512, 512, 512, 512}));
}

TEST_F(StarfieldBatchTest, TheRemainderIsDrawnAtTheEnd) {
    EXPECT_EQ(drawCallsFor(300), (std::vector<GLsizei>{512, 512, 176}));
}

TEST_F(StarfieldBatchTest, AFewStarsTakeOneDrawCall) {
    EXPECT_EQ(drawCallsFor(5), (std::vector<GLsizei>{20}));
}
