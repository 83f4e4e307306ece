#pragma once

// The whole object framework.

#include "qelmk/binaryStream.h"
#include "qelmk/classMacros.h"
#include "qelmk/classRegistry.h"
#include "qelmk/dynamicCast.h"
#include "qelmk/iCloneable.h"
#include "qelmk/iCloneableExternalizable.h"
#include "qelmk/iExternalizable.h"
#include "qelmk/iObjectReader.h"
#include "qelmk/iObjectWriter.h"
#include "qelmk/mergeStatus.h"
#include "qelmk/module.h"
#include "qelmk/ownedObjects.h"
#include "qelmk/statusCodes.h"
#include "qelmk/tBinaryObjectReader.h"
#include "qelmk/tBinaryObjectWriter.h"
#include "qelmk/tClass.h"
#include "qelmk/tClassImplementation.h"
#include "qelmk/tGUID.h"
#include "qelmk/tObject.h"
