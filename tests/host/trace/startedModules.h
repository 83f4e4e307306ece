#pragma once

// Starts the modules before the first test of a program and unloads them after the last; a block
// left behind stops the program.

#include <gtest/gtest.h>

#include "ntos/status.h"
#include "ntoshost/executive.h"
#include "oxdiagk/module.h"
#include "qelmk/module.h"
#include "vexk/module.h"

class tStartedModules : public testing::Environment {
 public:
  void SetUp() override {
    ASSERT_EQ(vexkInitialize(), STATUS_SUCCESS);
    ASSERT_EQ(qelmkInitialize(), STATUS_SUCCESS);
    ASSERT_EQ(oxdiagkInitialize(nullptr), STATUS_SUCCESS);
  }

  void TearDown() override {
    oxdiagkUnload();
    qelmkUnload();
    vexkUnload();
    ntoshost::requireNoOutstanding("the test program");
  }
};

inline testing::Environment* const startedModules =
    testing::AddGlobalTestEnvironment(new tStartedModules);
