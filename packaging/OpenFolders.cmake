# SPDX-License-Identifier: GPL-3.0-or-later
# Run by cpack before it packs: the folders of the package are not those of the packer's umask.
execute_process(COMMAND chmod -R u=rwX,go=rX ${CPACK_TEMPORARY_INSTALL_DIRECTORY} COMMAND_ERROR_IS_FATAL ANY)
