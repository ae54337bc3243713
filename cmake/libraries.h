// The libraries' headers that take most of a compilation, compiled once for all sources of a
// target. Sources include what they use all the same: -DROLLIX_PRECOMPILED=OFF builds without this.
#include <PxPhysicsAPI.h>
#include <QApplication>
#include <QImage>
#include <QKeyEvent>
#include <QTimer>
#include <osg/Geode>
#include <osg/Geometry>
#include <osg/MatrixTransform>
#include <osg/Program>
#include <osg/ShapeDrawable>
#include <osg/Uniform>
#include <osgViewer/CompositeViewer>
#include <osgViewer/View>

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <unordered_map>
#include <vector>
