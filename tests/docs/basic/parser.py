"""Host code as a tree."""

from . import syntax
from .lexer import BasicError, Token, tokens

# Operators that bind alike, the loosest first.
LEVELS = [{"or"}, {"and"}, {"=", "<>", "<", ">", "<=", ">="}, {"+", "-"}, {"*", "/", "\\", "mod"}]
KEYWORDS = {"dim", "as", "new", "if", "then", "else", "elseif", "end", "for", "to", "next", "sub", "function",
            "return", "not", "and", "or", "mod", "true", "false", "nil"}


class Parser:
    def __init__(self, text, first_line):
        self._tokens = tokens(text, first_line)
        self._past_the_end = Token("end", "", self._tokens[-1].line)
        self._at = 0

    # Tokens

    def _peek(self):
        return self._tokens[self._at] if self._at < len(self._tokens) else self._past_the_end

    def _next(self):
        token = self._peek()
        self._at += 1
        return token

    def _is(self, *texts):
        """Whether these names or operators come next."""
        ahead = self._tokens[self._at:self._at + len(texts)]
        return [t.text for t in ahead if t.kind in ("name", "operator")] == list(texts)

    def _take(self, *texts):
        if self._is(*texts):
            self._at += len(texts)
            return True
        return False

    def _expect(self, *texts):
        if not self._take(*texts):
            token = self._peek()
            raise BasicError(f"line {token.line}: '{' '.join(texts)}' is missing before '{token.text}'")

    def _name(self):
        token = self._next()
        if token.kind != "name" or token.text in KEYWORDS:
            raise BasicError(f"line {token.line}: '{token.text}' is no name")
        return token.text

    def _end_line(self):
        token = self._next()
        if token.kind != "end":
            raise BasicError(f"line {token.line}: '{token.text}' is too much")

    # Routines and statements

    def program(self):
        program = syntax.Program()
        while self._at < len(self._tokens):
            if self._is("sub") or self._is("function"):
                routine = self._routine()
                if routine.name in program.routines:
                    raise BasicError(f"line {routine.line}: {routine.name} is there twice")
                program.routines[routine.name] = routine
            elif self._peek().kind == "end":
                self._next()
            else:
                program.statements.append(self._statement())
        return program

    def _routine(self):
        opening = self._next()
        name = self._name()
        parameters = []
        self._expect("(")
        while not self._take(")"):
            parameter = self._name()
            self._expect("as")
            parameters.append((parameter, self._name()))
            if not self._is(")"):
                self._expect(",")
        result = None
        if opening.text == "function":
            self._expect("as")
            result = self._name()
        self._end_line()
        body = self._block(("end", opening.text))
        self._expect("end", opening.text)
        self._end_line()
        return syntax.Routine(name, parameters, result, body, opening.line)

    def _block(self, *endings):
        """The statements up to one of these endings, which is left."""
        body = []
        while not any(self._is(*ending) for ending in endings):
            if self._at >= len(self._tokens):
                raise BasicError(f"'{' '.join(endings[-1])}' is missing at the end")
            if self._peek().kind == "end":
                self._next()
            else:
                body.append(self._statement())
        return body

    def _statement(self):
        line = self._peek().line
        if self._take("dim"):
            names = [self._name()]
            while self._take(","):
                names.append(self._name())
            self._expect("as")
            new = self._take("new")
            statement = syntax.Dim(names, self._name(), new, line)
        elif self._take("if"):
            statement = self._if(line)
        elif self._take("for"):
            name = self._name()
            self._expect("=")
            first = self.expression()
            self._expect("to")
            last = self.expression()
            self._end_line()
            statement = syntax.For(name, first, last, self._block(("next",)), line)
            self._expect("next")
        elif self._take("return"):
            statement = syntax.Return(None if self._peek().kind == "end" else self.expression(), line)
        else:
            statement = self._simple(line)
        self._end_line()
        return statement

    def _if(self, line):
        branches = []
        condition = self.expression()
        self._expect("then")
        self._end_line()
        while True:
            body = self._block(("elseif",), ("else",), ("end", "if"))
            branches.append((condition, body))
            if self._take("end", "if"):
                return syntax.If(branches, line)
            if self._take("elseif"):
                condition = self.expression()
                self._expect("then")
            else:
                self._expect("else")
                condition = None
            self._end_line()

    def _simple(self, line):
        target = self._postfix()
        if self._take("="):
            return syntax.Assign(target, self.expression(), line)
        if self._peek().kind != "end":
            arguments = [self.expression()]
            while self._take(","):
                arguments.append(self.expression())
            return syntax.Run(syntax.Call(target, arguments, line), line)
        return syntax.Run(target, line)

    # Expressions

    def expression(self, level=0):
        if level == len(LEVELS):
            return self._unary()
        left = self.expression(level + 1)
        while self._peek().kind in ("name", "operator") and self._peek().text in LEVELS[level]:
            token = self._next()
            left = syntax.Binary(token.text, left, self.expression(level + 1), token.line)
        return left

    def _unary(self):
        line = self._peek().line
        for operator in ("-", "not"):
            if self._take(operator):
                return syntax.Unary(operator, self._unary(), line)
        return self._postfix()

    def _postfix(self):
        value = self._primary()
        while True:
            line = self._peek().line
            if self._take("."):
                value = syntax.Member(value, self._next().text, line)
            elif self._take("("):
                arguments = []
                while not self._take(")"):
                    arguments.append(self.expression())
                    if not self._is(")"):
                        self._expect(",")
                value = syntax.Call(value, arguments, line)
            else:
                return value

    def _primary(self):
        token = self._peek()
        if token.kind == "number":
            self._next()
            if token.text[0] == "&":
                return syntax.Literal(int(token.text[2:], 16))
            return syntax.Literal(float(token.text) if "." in token.text else int(token.text))
        if token.kind == "string":
            self._next()
            return syntax.Literal(token.text)
        for text, value in (("true", True), ("false", False), ("nil", None)):
            if self._take(text):
                return syntax.Literal(value)
        if self._take("new"):
            return syntax.New(self._name(), token.line)
        if self._take("("):
            value = self.expression()
            self._expect(")")
            return value
        return syntax.Name(self._name(), token.line)


def parse(text, first_line=1):
    """The routines and statements of host code. Throws BasicError, naming the line."""
    return Parser(text, first_line).program()
