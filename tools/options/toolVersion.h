#pragma once

// The version that all tools of one build have, such as 2.0.0d1.
char const* getToolVersion();
