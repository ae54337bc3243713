#include "level/GameObject.h"

#include "level/Level.h"

#include <iostream>

GameObject::GameObject(Level& owner) : level(&owner), id(owner.nextObjectId()) {}

GameObject::~GameObject() = default;

void GameObject::contact(GameObject*)
{
    std::cout << "standard contact" << std::endl;
}

void GameObject::contactedBy(GameObject*)
{
    std::cout << "standard contactedBy" << std::endl;
}

void GameObject::trigger(GameObject*)
{
    std::cout << "standard trigger" << std::endl;
}

void GameObject::triggeredBy(GameObject*)
{
    std::cout << "standard triggeredBy" << std::endl;
}

void GameObject::untrigger(GameObject*)
{
    std::cout << "standard untrigger" << std::endl;
}

void GameObject::untriggeredBy(GameObject*)
{
    std::cout << "standard untriggeredBy" << std::endl;
}

void GameObject::reset() {}

Rollix* GameObject::game() const
{
    return level->game();
}
