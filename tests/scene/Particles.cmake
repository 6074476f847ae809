# The particle pool, its emitters and the slices that draw it, on a real GL context. Run from
# the repository root, where the scene roots find shaders/. Draw calls are counted through
# --wrap=glDrawArrays.
add_executable(scene_particle_tests
    ParticleSystemTest.cpp
    ParticleEmitterTest.cpp
    ParticleSliceTest.cpp
)
target_link_libraries(scene_particle_tests PRIVATE scene orvel test_support GTest::gtest GTest::gtest_main)
target_link_options(scene_particle_tests PRIVATE -Wl,--wrap=glDrawArrays)
set_target_properties(scene_particle_tests PROPERTIES CROSSCOMPILING_EMULATOR ${XVFB_EXEC})
gtest_discover_tests(scene_particle_tests DISCOVERY_TIMEOUT 30 WORKING_DIRECTORY ${PROJECT_SOURCE_DIR})
