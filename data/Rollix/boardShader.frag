#version 150 compatibility
// The board and every block on it: polished wood, stained by height.

//HOTSPOT_PRE_MAIN

void main()
{
    //HOTSPOT_START_MAIN
    float grain = woodGrain();
    float gloss = woodGloss * (1.0 - 0.6 * grain);
    gl_FragColor = vec4(litWood(woodColor(grain), gloss), 1.0);
}
