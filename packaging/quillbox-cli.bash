# SPDX-License-Identifier: GPL-3.0-or-later
# bash completion for quillbox-cli
_quillbox_cli() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]} command=${COMP_WORDS[1]} options=
  local disk='--profile --drive --salvage --help'
  case $command in
    list) options="--json $disk" ;;
    backup) options="--to --identity --complete --overwrite $disk" ;;
    restore) options="--from --overwrite $disk" ;;
    mail) options="--to --identity --format --recover $disk" ;;
    contacts) options="--to --overwrite $disk" ;;
    report) options="--to --overwrite --html --rules $disk" ;;
    check) options="--against $disk" ;;
  esac
  COMPREPLY=()
  if ((COMP_CWORD == 1)); then
    mapfile -t COMPREPLY < <(compgen -W 'list backup restore mail contacts report check --help --version' -- "$current")
    return
  fi
  case $previous in
    --format) mapfile -t COMPREPLY < <(compgen -W 'mbox eml maildir' -- "$current"); return ;;
    --profile | --identity | --drive) return ;;
  esac
  if [[ $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
  else
    compopt -o filenames 2> /dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$current")
  fi
}
complete -F _quillbox_cli quillbox-cli
