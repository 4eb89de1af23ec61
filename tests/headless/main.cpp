// SPDX-License-Identifier: GPL-3.0-or-later
// Linked with the whole of every library below the faces: it cannot be linked when one of them needs a face.
int main()
{
    return 0;
}
