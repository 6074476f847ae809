# Sprites, text, effects, the fader and the shader set on a real GL context, plus the shells
# beside them. The GL tests load shaders/ relative to the repository root.
add_executable(scene_visuals_tests
    SpriteTest.cpp
    TextTest.cpp
    EffectTest.cpp
    FaderTest.cpp
    ShadersTest.cpp
    LeafDrawAllocationTest.cpp
    PostprocessTest.cpp
    Model3DTest.cpp
)
target_link_libraries(scene_visuals_tests PRIVATE scene orvel test_support GTest::gtest GTest::gtest_main)
set_target_properties(scene_visuals_tests PROPERTIES CROSSCOMPILING_EMULATOR ${XVFB_EXEC})
gtest_discover_tests(scene_visuals_tests DISCOVERY_TIMEOUT 30 WORKING_DIRECTORY ${PROJECT_SOURCE_DIR})
