// Batches: every model file under a folder drawn into a picture of its own,
// several processes at once.
#ifndef E3D_RENDER_BATCH_H
#define E3D_RENDER_BATCH_H

// Draws input into output (a PNG) and returns an exit code of e3d-render;
// runs in a child process of its own.
typedef int (*BatchRender)(const char* input, const char* output, void* user);

// Draws every file under dir whose extension the model layer knows into
// outDir, mirroring the tree and keeping the model's name with .png added
// (parts/bunny.ply -> OUTDIR/parts/bunny.ply.png), jobs at a time. Shows a
// progress bar on a terminal unless quiet, then what failed and why.
// Returns 0 when every file was drawn, 7 when some lost polygons and none
// failed, 8 when any failed, 2 when dir cannot be read.
int RunBatch(const char* dir, const char* outDir, int jobs, bool quiet, BatchRender render, void* user);

#endif
