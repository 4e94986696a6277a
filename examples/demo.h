/* Sections of the QZMath demo; each lives in its own file. */
#ifndef QZ_DEMO_H
#define QZ_DEMO_H

/* One axis from rest to a distant target, with the velocity limit lowered midway. */
void demo_single_axis(void);
/* The seven-joint control cycle. argv may carry --multistage and --csv PATH. Returns 0 on success. */
int demo_arm(int argc, char **argv);
/* Flange pose of the demo's seven-joint arm for joint angles q (radians), as XYZABC in
 * millimetres and degrees. */
void demo_flange_pose(const double q[7], double xyzabc[6]);
/* A noisy joint signal through the averaging filter and the one-step fitter. */
void demo_filters(void);

#endif
