The manual page has nothing that its readers complain of, and bears the version.

  $ PATH=$TARN_BUILD/tarn.dir:$PATH
  $ mandoc -Tlint "$TARN_BUILD/tarn.dir/tarn.1"
  $ groff -mdoc -Tutf8 -ww "$TARN_BUILD/tarn.dir/tarn.1" >page

Every command has help, and every example prints what the page shows.

  $ echo @script@ | tarn_manual >script
  $ echo @examples@ | tarn_manual >examples
  $ mkdir folder && cp -r "$TARN_FIXTURES"/. folder && cd folder
  $ bash ../script | diff ../examples -

Completion knows commands, options and the words that an option takes.

  $ . "$TARN_BUILD/tarn.dir/completion/tarn" && compopt() { :; }
  $ complete_words() { COMP_WORDS=("$@") COMP_CWORD=$(($# - 1)); _tarn; echo "${COMPREPLY[@]}"; }
  $ complete_words tarn templ
  template
  $ complete_words tarn template --
  --help
  $ complete_words tarn template some
  
