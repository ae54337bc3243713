#version 150 compatibility
// A mine: red lacquer while it waits, a ball of fire for the half second of its blast.

in vec3 minePosition;

uniform float osg_SimulationTime;

//HOTSPOT_PRE_MAIN

const float blastCurve = 6.0;  // 1 / units: between the curvatures of the small ball and the large
const vec3 lacquer = vec3(0.85, 0.03, 0.03);
const float gloss = 0.9;
const float shininess = 70.0;
const vec3 emberGlow = vec3(0.35, 0.06, 0.0);  // it breathes, so that it is seen from far away
const float emberPulse = 5.0;  // radians a second
const vec3 fireCore = vec3(1.0, 0.96, 0.65);
const vec3 fireEdge = vec3(1.0, 0.25, 0.02);
const float fireFlicker = 30.0;  // radians a second

void main()
{
    //HOTSPOT_START_MAIN
    vec3 normal = phongNormal();
    // How fast the normal turns as one walks over the ball is one over its radius.
    float curve = length(fwidth(normal)) / max(length(fwidth(minePosition)), 1.0e-6);
    float facing = abs(dot(normal, normalize(eyePosition)));

    if (curve > blastCurve) {
        float ember = 0.5 + 0.5 * sin(emberPulse * osg_SimulationTime);
        gl_FragColor = vec4(phong(lacquer, normal, gloss, shininess) + ember * emberGlow, 1.0);
    } else {
        float tongues = 0.5 + 0.5 * sin(14.0 * minePosition.x + 9.0 * sin(11.0 * minePosition.y)
                                        + 12.0 * minePosition.z - fireFlicker * osg_SimulationTime);
        gl_FragColor = vec4(mix(fireEdge, fireCore, facing * (0.65 + 0.35 * tongues)), 1.0);
    }
}
