#pragma once

#include <osg/Referenced>

class Level;
class Rollix;

/// Everything in a level that has a body. One small number ties its part of the scene graph to its
/// actor: the id is the actor's id and the key of its transform. The actor belongs to the physics
/// scene, which is cleared as a whole before any object dies.
class GameObject : public osg::Referenced
{
public:
    /// Takes the level's next id.
    explicit GameObject(Level& level);

    /// The generic event vocabulary: one object meets another, and the other is told by the passive
    /// form. What they print is the sign that an event reached an object it means nothing to.
    virtual void contact(GameObject* other);
    virtual void contactedBy(GameObject* other);
    virtual void trigger(GameObject* other);
    virtual void triggeredBy(GameObject* other);
    virtual void untrigger(GameObject* other);
    virtual void untriggeredBy(GameObject* other);

    /// Brings the object back to the state that it had when the level began.
    virtual void reset();

    Rollix* game() const;
    unsigned int getId() const { return id; }

protected:
    ~GameObject() override;

    Level* level;  // not owned: the level owns its objects
    unsigned int id;
};
