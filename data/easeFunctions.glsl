// Animations that run on the graphics card: the program writes start and end times once, and every frame
// finds its own place between them by the clock of the simulation.

uniform float osg_SimulationTime;  // seconds, set by the scene graph for every frame

// How far an animation has come, 0 to 1. One whose end is not after its start has no length: it is over.
float easeProgress(float startTime, float endTime)
{
    if (endTime <= startTime)
        return 1.0;
    return clamp((osg_SimulationTime - startTime) / (endTime - startTime), 0.0, 1.0);
}

// Starts and stops gently; the cubic with level ends at 0 and 1.
float easeInOut(float t)
{
    return t * t * (3.0 - 2.0 * t);
}

// Comes to rest after going a little too far, like something that snaps in.
float easeOutBack(float t)
{
    const float overshoot = 1.4;
    float rest = t - 1.0;
    return 1.0 + rest * rest * ((overshoot + 1.0) * rest + overshoot);
}
