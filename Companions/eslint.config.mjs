// How the companions are read: in the language as their compositors speak it, strictly.

/** What the oldest shell's engine knows. */
const LANGUAGE = 2022;

/** What KWin 5.27's engine knows. */
const LANGUAGE_OF_KWIN = 2016;

const gnomeShell = {
    console: 'readonly',
    global: 'readonly',
};

const kwinScripts = {
    KWin: 'readonly',
    QTimer: 'readonly',
    callDBus: 'readonly',
    workspace: 'readonly',
};

const kwinEffects = {
    Effect: 'readonly',
    cancel: 'readonly',
    effects: 'readonly',
    set: 'readonly',
};

const rules = {
    // What is likely wrong.
    'array-callback-return': 'error',
    'consistent-return': 'error',
    'constructor-super': 'error',
    'default-case-last': 'error',
    'eqeqeq': 'error',
    'for-direction': 'error',
    'getter-return': 'error',
    'guard-for-in': 'error',
    'no-async-promise-executor': 'error',
    'no-caller': 'error',
    'no-class-assign': 'error',
    'no-compare-neg-zero': 'error',
    'no-cond-assign': 'error',
    'no-const-assign': 'error',
    'no-constant-binary-expression': 'error',
    'no-constant-condition': 'error',
    'no-constructor-return': 'error',
    'no-control-regex': 'error',
    'no-delete-var': 'error',
    'no-dupe-args': 'error',
    'no-dupe-class-members': 'error',
    'no-dupe-else-if': 'error',
    'no-dupe-keys': 'error',
    'no-duplicate-case': 'error',
    'no-duplicate-imports': 'error',
    'no-empty': 'error',
    'no-ex-assign': 'error',
    'no-extend-native': 'error',
    'no-fallthrough': 'error',
    'no-func-assign': 'error',
    'no-global-assign': 'error',
    'no-implicit-coercion': 'error',
    'no-import-assign': 'error',
    'no-inner-declarations': 'error',
    'no-invalid-this': 'error',
    'no-irregular-whitespace': 'error',
    'no-loop-func': 'error',
    'no-loss-of-precision': 'error',
    'no-obj-calls': 'error',
    'no-promise-executor-return': 'error',
    'no-prototype-builtins': 'error',
    'no-redeclare': 'error',
    'no-self-assign': 'error',
    'no-self-compare': 'error',
    'no-setter-return': 'error',
    'no-shadow': 'error',
    'no-sparse-arrays': 'error',
    'no-template-curly-in-string': 'error',
    'no-this-before-super': 'error',
    'no-throw-literal': 'error',
    'no-undef': 'error',
    'no-unmodified-loop-condition': 'error',
    'no-unreachable': 'error',
    'no-unreachable-loop': 'error',
    'no-unsafe-finally': 'error',
    'no-unsafe-negation': 'error',
    'no-unsafe-optional-chaining': 'error',
    'no-unused-expressions': 'error',
    'no-unused-private-class-members': 'error',
    'no-use-before-define': ['error', {functions: false, classes: false}],
    'no-useless-assignment': 'error',
    'no-useless-catch': 'error',
    'radix': 'error',
    'require-atomic-updates': 'error',
    'use-isnan': 'error',
    'valid-typeof': 'error',

    // Text must never become code, and nothing may wait: no synchronous call of any kind.
    'no-eval': 'error',
    'no-implied-eval': 'error',
    'no-new-func': 'error',
    'no-script-url': 'error',
    'no-restricted-properties': ['error',
        ...['call_sync', 'call_with_unix_fd_list_sync', 'send_message_with_reply_sync', 'flush_sync',
            'query_info', 'load_contents', 'replace_contents', 'enumerate_children', 'load_bytes',
            'communicate', 'communicate_utf8', 'wait', 'spawn_sync', 'spawn_command_line_sync', 'usleep',
            'iteration', 'file_get_contents', 'get_sync', 'init'].map(property => ({
            property,
            message: 'It waits, and the whole desktop with it.',
        }))],

    // What reads well.
    'arrow-body-style': 'error',
    'camelcase': ['error', {properties: 'never', ignoreDestructuring: true}],
    'complexity': ['error', 10],
    'curly': ['error', 'multi-or-nest', 'consistent'],
    'dot-notation': 'error',
    'func-style': ['error', 'declaration', {allowArrowFunctions: true}],
    'grouped-accessor-pairs': 'error',
    'max-depth': ['error', 3],
    'max-lines-per-function': ['error', 60],
    'max-params': ['error', 5],
    'no-else-return': 'error',
    'no-extra-bind': 'error',
    'no-lonely-if': 'error',
    'no-multi-assign': 'error',
    'no-negated-condition': 'error',
    'no-nested-ternary': 'error',
    'no-param-reassign': 'error',
    'no-return-assign': 'error',
    'no-sequences': 'error',
    'no-undef-init': 'error',
    'no-unneeded-ternary': 'error',
    'no-useless-computed-key': 'error',
    'no-useless-concat': 'error',
    'no-useless-constructor': 'error',
    'no-useless-escape': 'error',
    'no-useless-rename': 'error',
    'no-useless-return': 'error',
    'no-var': 'error',
    'no-void': 'error',
    'no-warning-comments': 'error',
    'no-with': 'error',
    'object-shorthand': 'error',
    'prefer-arrow-callback': 'error',
    'prefer-const': 'error',
    'prefer-destructuring': ['error', {VariableDeclarator: {array: false, object: true}}],
    'prefer-exponentiation-operator': 'error',
    'prefer-numeric-literals': 'error',
    'prefer-object-spread': 'error',
    'prefer-rest-params': 'error',
    'prefer-spread': 'error',
    'prefer-template': 'error',
    'unicode-bom': 'error',
    'yoda': 'error',
};

const linterOptions = {reportUnusedDisableDirectives: 'error', noInlineConfig: true};
const unused = {args: 'after-used', argsIgnorePattern: '^_', caughtErrors: 'none'};

export default [
    {
        files: ['**/extension.js'],
        languageOptions: {ecmaVersion: LANGUAGE, sourceType: 'module', globals: gnomeShell},
        linterOptions,
        rules: {...rules, 'no-unused-vars': ['error', unused]},
    },
    {
        files: ['**/__init__.js'],
        languageOptions: {ecmaVersion: LANGUAGE, sourceType: 'script', globals: {...gnomeShell, imports: 'readonly'}},
        linterOptions,
        rules: {
            ...rules,
            'strict': ['error', 'global'],
            // What the shell looks for has to be a property of the script.
            'no-var': 'off',
            'no-unused-vars': ['error', {...unused, varsIgnorePattern: '^extension$'}],
        },
    },
    {
        files: ['**/kwin-script.js'],
        languageOptions: {ecmaVersion: LANGUAGE_OF_KWIN, sourceType: 'script', globals: kwinScripts},
        linterOptions,
        rules: {
            ...rules,
            // The program's own line, which comes last, makes one of these.
            'no-unused-vars': ['error', {...unused, varsIgnorePattern: '^(Companion|Errand)$'}],
            'prefer-object-spread': 'off',
        },
    },
    {
        files: ['**/kwin-effect.js'],
        languageOptions: {ecmaVersion: LANGUAGE_OF_KWIN, sourceType: 'script', globals: kwinEffects},
        linterOptions,
        rules: {...rules, 'no-unused-vars': ['error', unused]},
    },
];
