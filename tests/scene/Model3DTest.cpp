// The 3D classes are empty shells: polymorphic, default-constructible, no fields.

#include "scene/Model3D.h"

#include <memory>
#include <type_traits>

#include <gtest/gtest.h>

#include "scene/Object3D.h"
#include "scene/ParticleEmitter3D.h"
#include "scene/ParticleSlice3D.h"
#include "scene/ParticleSystem3D.h"

namespace {

// A class whose only data is the pointer to its virtual table.
template <typename T> constexpr bool isEmptyShell() {
    return std::is_polymorphic<T>::value && std::has_virtual_destructor<T>::value &&
           std::is_default_constructible<T>::value && sizeof(T) == sizeof(void*);
}

} // namespace

TEST(Model3D, ShellsHaveOnlyAVirtualDestructor) {
    EXPECT_TRUE(isEmptyShell<Model3D>());
    EXPECT_TRUE(isEmptyShell<Object3D>());
    EXPECT_TRUE(isEmptyShell<ParticleSystem3D>());
    EXPECT_TRUE(isEmptyShell<ParticleSlice3D>());
    EXPECT_TRUE(isEmptyShell<ParticleEmitter3D>());
}

TEST(Model3D, ShellsAreCreatedAndDeletedThroughTheirType) {
    std::unique_ptr<Model3D> a(new Model3D());
    std::unique_ptr<Object3D> b(new Object3D());
    std::unique_ptr<ParticleSystem3D> c(new ParticleSystem3D());
    std::unique_ptr<ParticleSlice3D> d(new ParticleSlice3D());
    std::unique_ptr<ParticleEmitter3D> e(new ParticleEmitter3D());
    EXPECT_NE(a.get(), nullptr);
    EXPECT_NE(e.get(), nullptr);
}
