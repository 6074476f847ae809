#include "scene/Postprocess.h"

Postprocess::Postprocess()
    : factor1(0.08f), factor2(0.2f), factor3(0.05f), factor4(0.5f), scale1(1.25f, 1.0f), scale2(1.25f, 1.0f),
      mode(1) {}

void Postprocess::render() {}
