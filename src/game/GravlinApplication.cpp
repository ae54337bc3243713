#include "game/GravlinApplication.h"

#include "physics/PhysxConversions.h"

void GravlinApplication::setActorTransform(unsigned int actorId, osg::MatrixTransform* transform)
{
    actorTransforms[actorId] = transform;
}

void GravlinApplication::update() {}

float GravlinApplication::timeStep()
{
    return 1.0f / float(frameRate());
}

int GravlinApplication::frameRate()
{
    return 50;
}

void GravlinApplication::syncTransforms()
{
    for (const auto& [id, actor] : actors) {
        const auto entry = actorTransforms.find(id);
        if (entry == actorTransforms.end() || !entry->second)
            continue;
        entry->second->setMatrix(toOsgMatrix(actor->getGlobalPose()));
    }
}

void GravlinApplication::keyPressEvent(QKeyEvent*) {}

void GravlinApplication::keyReleaseEvent(QKeyEvent*) {}

void GravlinApplication::mousePressEvent(QMouseEvent*) {}

void GravlinApplication::mouseReleaseEvent(QMouseEvent*) {}

void GravlinApplication::mouseDoubleClickEvent(QMouseEvent*) {}

void GravlinApplication::mouseMoveEvent(QMouseEvent*) {}

void GravlinApplication::wheelEvent(QWheelEvent*) {}
