// A steady-state frame of sprites, texts, effects and the fader allocates nothing.

#include <cstdio>
#include <vector>

#include "engine/Font.h"
#include "engine/GL.h"
#include "engine/Orvel.h"
#include "engine/ShaderProgram.h"
#include "engine/Surface.h"
#include "engine/Texture.h"
#include "scene/Effect.h"
#include "scene/Fader.h"
#include "scene/Group.h"
#include "scene/Scene2D.h"
#include "scene/Sprite.h"
#include "scene/Text.h"
#include "tests/support/AllocationCounter.h"
#include "tests/scene/ColourDraw.h"
#include "tests/scene/VisualsFixture.h"

using orvel::Orvel;
using orvel::vec3;
using testing_support::allocationCount;
using testing_support::VisualsTest;

namespace {

// A small batch of lines in the state's colour, as the game's effects draw.
class LinesEffect : public Effect {
public:
    void draw(SceneState& state) override {
        static GLfloat vertices[8] = {0, 0, 50, 0, 0, 0, 0, 50};
        scene_test::drawInColour(GL_LINES, vertices, 4, state.color);
    }
};

class LeafDrawAllocationTest : public VisualsTest {
protected:
    void SetUp() override {
        VisualsTest::SetUp();
        orvel::Surface image(32, 32);
        for (int y = 0; y < 32; ++y)
            for (int x = 0; x < 32; ++x) image.setPixel(x, y, pack(8 * x, 8 * y, 100));
        texture = new orvel::Texture(&image);
        font = new orvel::Font(new orvel::Surface(256, 256));
    }
    void TearDown() override {
        for (Drawable* n : nodes) delete n;
        delete texture;
        delete font;
        VisualsTest::TearDown();
    }

    // Sprites (plain and animated), texts and effects on the root and inside a group.
    void populate(Container& root) {
        Group* group = new Group();
        group->position = vec3(40, 40, 0);
        for (int i = 0; i < 8; ++i) {
            Sprite* s = new Sprite(texture, 20, 20);
            s->position = vec3(20.0f + 30 * i, 60, 0);
            s->setRotation(10.0f * i);
            if (i % 2) {
                s->animated = true;
                s->framesX = 2;
                s->framesY = 2;
                s->frame = i % 4;
            }
            (i < 4 ? (Container&)root : *group).add(s);
            nodes.push_back(s);
        }
        for (int i = 0; i < 3; ++i) {
            Text* t = new Text(font, "Score 000");
            t->position = vec3(10, 100.0f + 20 * i, 0);
            root.add(t);
            texts.push_back(t);
            nodes.push_back(t);
        }
        LinesEffect* e = new LinesEffect();
        group->add(e);
        nodes.push_back(e);
        // The group stays back-most among the root's children, with siblings after it.
        root.add(group);
        group->sendToBack();
        nodes.push_back(group);
        nodes.push_back(new LinesEffect());
        root.add(nodes.back());
    }

    // Changes that game logic makes every frame: numbers in texts, frames, positions.
    void animate(int frame) {
        static char line[32];
        std::snprintf(line, sizeof line, "Score %03d", frame % 1000);
        for (Text* t : texts) t->setText(line);
        Orvel::currentTime += 16;
    }

    // Heap allocations made by five more animated frames of `root`, each with `faderDraws` draws
    // of `fader`.
    template <typename Root> std::size_t allocationsOfFiveFrames(Root& root, Fader& fader, int faderDraws) {
        std::size_t before = allocationCount();
        for (int frame = 1; frame <= 5; ++frame) {
            animate(frame);
            root.draw();
            for (int i = 0; i < faderDraws; ++i) fader.draw();
        }
        return allocationCount() - before;
    }

    orvel::Texture* texture = nullptr;
    orvel::Font* font = nullptr;
    std::vector<Drawable*> nodes;
    std::vector<Text*> texts;
};

} // namespace

TEST_F(LeafDrawAllocationTest, HudFrameAllocatesNothingAfterWarmUp) {
    DirectScene2D* root = makeRoot();
    populate(*root);
    Fader fader;
    fader.color = orvel::vec4(1, 1, 1, 1);
    Orvel::currentTime = 1000;
    fader.fadeIn(500);

    animate(0);
    drawFrame(*root);
    fader.draw();

    EXPECT_EQ(allocationsOfFiveFrames(*root, fader, 2), 0u);
    delete root;
}

TEST_F(LeafDrawAllocationTest, WorldFrameAllocatesNothingAfterWarmUp) {
    Scene2D* root = new Scene2D(-1, -1);
    root->debugDraw = false;
    populate(*root);
    Fader fader;
    Orvel::currentTime = 1000;
    fader.fadeOut(300);

    animate(0);
    root->draw();
    fader.draw();

    EXPECT_EQ(allocationsOfFiveFrames(*root, fader, 1), 0u);
    delete root;
}
