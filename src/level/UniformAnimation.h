#pragma once

#include <osg/StateSet>
#include <osg/Uniform>
#include <osg/ref_ptr>

#include <string>

/// A value that a shader eases from one end to another over a span of simulation time. The program
/// sets the ends once an event; between events nothing changes on this side. The uniforms are
/// `name`, `name`AnimationTarget, `name`AnimationStart and `name`AnimationEnd, the times in
/// seconds.
template <typename Value>
class UniformAnimation
{
public:
    /// Adds the four uniforms to `stateSet`, at rest at `initial`.
    UniformAnimation(osg::StateSet* stateSet, const std::string& name, const Value& initial)
        : value(new osg::Uniform(name.c_str(), initial)),
          target(new osg::Uniform((name + "AnimationTarget").c_str(), initial)),
          start(new osg::Uniform((name + "AnimationStart").c_str(), 0.0f)),
          end(new osg::Uniform((name + "AnimationEnd").c_str(), 0.0f))
    {
        for (const osg::ref_ptr<osg::Uniform>& uniform : {value, target, start, end})
            stateSet->addUniform(uniform, osg::StateAttribute::ON);
    }

    void run(const Value& from, const Value& to, float startTime, float duration)
    {
        value->set(from);
        target->set(to);
        start->set(startTime);
        end->set(startTime + duration);
    }

    /// Shows `rest` whatever the time; the times stay as they are.
    void stop(const Value& rest)
    {
        value->set(rest);
        target->set(rest);
    }

private:
    osg::ref_ptr<osg::Uniform> value;
    osg::ref_ptr<osg::Uniform> target;
    osg::ref_ptr<osg::Uniform> start;
    osg::ref_ptr<osg::Uniform> end;
};
