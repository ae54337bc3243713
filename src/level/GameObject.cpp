#include "level/GameObject.h"

#include "base/Say.h"
#include "level/Level.h"

GameObject::GameObject(Level& owner) : level(&owner), id(owner.nextObjectId()) {}

GameObject::~GameObject() = default;

void GameObject::contact(GameObject*)
{
    say("standard contact");
}

void GameObject::contactedBy(GameObject*)
{
    say("standard contactedBy");
}

void GameObject::trigger(GameObject*)
{
    say("standard trigger");
}

void GameObject::triggeredBy(GameObject*)
{
    say("standard triggeredBy");
}

void GameObject::untrigger(GameObject*)
{
    say("standard untrigger");
}

void GameObject::untriggeredBy(GameObject*)
{
    say("standard untriggeredBy");
}

void GameObject::reset() {}

Rollix* GameObject::game() const
{
    return level->game();
}
